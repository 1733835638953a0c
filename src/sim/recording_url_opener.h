#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/url_opener.h"

namespace orbinex {

/// Notes what is opened.
class RecordingUrlOpener final : public UrlOpener {
  public:
    bool open(std::string_view url) override {
        opened.emplace_back(url);
        return isWorking;
    }

    std::vector<std::string> opened;
    bool isWorking = true;
};

}  // namespace orbinex
