#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "app/url_opener.h"
#include "base/published.h"

namespace orbinex {

/// Opens by another opener, and tells what that could not open.
class ReportingUrlOpener final : public UrlOpener {
  public:
    /// The opener must outlive this one.
    explicit ReportingUrlOpener(UrlOpener& opener) : opener_(opener) {}

    /// The last address that could not be opened, until somebody has read of it.
    Published<std::optional<std::string>, ReportingUrlOpener> unopened;

    bool open(std::string_view url) override {
        const bool isOpened = opener_.open(url);
        if (!isOpened) unopened = std::string(url);
        return isOpened;
    }

    /// Somebody has read of it.
    void acknowledge() { unopened = std::nullopt; }

  private:
    UrlOpener& opener_;
};

}  // namespace orbinex
