#include "ui/typeface.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <array>

namespace orbinex {

namespace {

struct Pair {
    const char* book;
    const char* light;
    double scale;
};
constexpr std::array candidates{
    Pair{"Futura-Book", "Futura-Light", 0.94},
    Pair{"Futura Book", "Futura Light", 0.94},
    Pair{"Futura", "Futura", 0.94},
    Pair{"League Spartan", "League Spartan Light", 1.0},
    Pair{"URW Gothic", "URW Gothic", 0.88},
};

double naturalHeight(const QString& family) {
    constexpr int size = 100;
    QFont font(family);
    font.setPixelSize(size);
    return QFontMetricsF(font).height() / size;
}

}  // namespace

Typeface chooseTypeface(const std::function<bool(const QString&)>& hasFamily, const QString& desktopFamily) {
    for (const auto& [book, light, scale] : candidates)
        if (hasFamily(book)) return {.book = book, .light = hasFamily(light) ? light : book, .scale = scale};
    return {.book = desktopFamily, .light = desktopFamily, .scale = 0.88};
}

QVariantMap installedTypeface() {
    const Typeface chosen =
        chooseTypeface([](const QString& family) { return QFontDatabase::hasFamily(family); },
                       QGuiApplication::font().family());
    return {{"book", chosen.book},
            {"light", chosen.light},
            {"scale", chosen.scale},
            {"natural", naturalHeight(chosen.book)}};
}

}  // namespace orbinex
