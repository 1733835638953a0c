#include "ui/message_model.h"

#include "ui/interface_texts.h"
#include "ui/shown_text.h"

namespace orbinex {

namespace Text = InterfaceText;

MessageModel::MessageModel(const Sources& sources) : sources_(sources) {
    const auto refresh = [this](const auto&) { update(); };
    observers_.push_back(sources.central.alert.onDidChange(refresh));
    observers_.push_back(sources.relocation.alert.onDidChange(refresh));
    observers_.push_back(sources.pairing.question.onDidChange(refresh));
    observers_.push_back(sources.urls.unopened.onDidChange(refresh));
    update();
}

MessageModel::Message MessageModel::wanted() const {
    const auto text = [](const std::string& utf8) { return QString::fromStdString(utf8); };
    if (const auto& question = *sources_.pairing.question) {
        return {Kind::pairing,
                text(Text::pairTitle(shownName(question->name))),
                text(Text::pairMessage(question->digits)),
                {text(Text::pair), text(Text::cancel)},
                {},
                QString::number(question->serial)};
    }
    if (const auto& alert = *sources_.relocation.alert) {
        QStringList buttons;
        for (const auto& button : alert->buttons) buttons.push_back(text(button));
        return {Kind::relocation, text(alert->title),       text(alert->message),
                buttons,          text(alert->suppression), {}};
    }
    if (deviceToForget_) {
        const std::string& name = deviceToForget_->name;
        return {Kind::forget,
                text(Text::forgetTitle(shownText(name))),
                text(Text::forgetMessage),
                {text(Text::forget), text(Text::cancel)},
                {},
                text(deviceToForget_->id.text())};
    }
    if (const auto& url = *sources_.urls.unopened) {
        return {
            Kind::unopened, text(Text::unopenedTitle), text(Text::unopened(*url)), {text(okButton)}, {}, {}};
    }
    if (const auto& alert = *sources_.central.alert) {
        return {Kind::alert, text(shownText(alert->title)), text(shownText(alert->message)), {text(okButton)},
                {},          text(alert->id.text())};
    }
    return {};
}

void MessageModel::update() {
    auto next = wanted();
    if (next == message_) return;
    message_ = std::move(next);
    ++serial_;
    Q_EMIT changed();
}

void MessageModel::askToForget(const QString& id) {
    const auto parsed = UUID::parse(id.toStdString());
    deviceToForget_ = parsed ? sources_.trustStore.deviceWithID(*parsed) : std::nullopt;
    update();
}

void MessageModel::answer(int serial, int button, bool isTicked) {
    if (serial != serial_ || button < 0 || button >= message_.buttons.size()) return;
    const bool isFirst = button == 0;
    switch (message_.kind) {
        case Kind::none: break;
        case Kind::pairing:
            // The number of the question, not of the message: it may have been asked before this model.
            sources_.pairing.answer(message_.id.toInt(), isFirst);
            break;
        case Kind::relocation: sources_.relocation.answer(static_cast<std::size_t>(button), isTicked); break;
        case Kind::forget: {
            const auto device = std::exchange(deviceToForget_, std::nullopt);
            if (isFirst) sources_.central.forgetDevice(*device);
            update();
            break;
        }
        case Kind::unopened: sources_.urls.acknowledge(); break;
        case Kind::alert: sources_.central.dismissAlert(); break;
    }
}

}  // namespace orbinex
