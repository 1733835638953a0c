#include "ui/interface_model.h"

#include <utility>

#include "app/product_links.h"
#include "app/product_version.h"
#include "ui/interface_texts.h"

namespace orbinex {

InterfaceModel::InterfaceModel(const Sources& sources, Actions actions)
    : urls_(sources.urls),
      actions_(std::move(actions)),
      connection_(sources.managers.central, sources.trustStore, sources.urls),
      phones_(sources.queue, sources.managers.central, sources.trustStore),
      settings_(sources.managers),
      message_({sources.managers.central, sources.trustStore, sources.relocation, sources.pairing,
                sources.urls}) {}

QString InterfaceModel::version() const {
    return QString::fromStdString(InterfaceText::version(shortVersion, buildVersion));
}

void InterfaceModel::openAppStore() {
    urls_.open(appStoreUrl);
}
void InterfaceModel::openPrivacyPolicy() {
    urls_.open(privacyPolicyUrl);
}
void InterfaceModel::openSupport() {
    urls_.open(supportUrl);
}

}  // namespace orbinex
