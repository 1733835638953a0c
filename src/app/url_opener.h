#pragma once

#include <string_view>

namespace orbinex {

/// Opens web pages and the panels of the desktop's settings.
class UrlOpener {
  public:
    UrlOpener() = default;
    UrlOpener(const UrlOpener&) = delete;
    UrlOpener& operator=(const UrlOpener&) = delete;
    virtual ~UrlOpener() = default;

    /// One of the settings of system_settings_urls.h, or a web page (http, https). False when it is neither,
    /// or nothing on this system opens it. Does not wait for what it starts.
    virtual bool open(std::string_view url) = 0;
};

}  // namespace orbinex
