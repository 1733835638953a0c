#include "ui/shown_text.h"

#include "app/plain_line.h"
#include "link/link_texts.h"

namespace orbinex {

std::string shownText(std::string_view text) {
    std::string kept(text);
    // U+200E, U+200F and U+061C.
    for (const std::string_view mark : {"\xE2\x80\x8E", "\xE2\x80\x8F", "\xD8\x9C"})
        for (auto at = kept.find(mark); at != std::string::npos; at = kept.find(mark, at))
            kept.erase(at, mark.size());
    return plainLine(kept);
}

std::string shownName(std::string_view name) {
    auto shown = shownText(name);
    return shown.empty() ? LinkText::someIPhone : shown;
}

}  // namespace orbinex
