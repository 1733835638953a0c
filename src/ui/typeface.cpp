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

Typeface chooseTypeface() {
    for (const auto& [book, light, scale] : candidates) {
        if (!QFontDatabase::hasFamily(book)) continue;
        return {book, QFontDatabase::hasFamily(light) ? light : book, scale, naturalHeight(book)};
    }
    const QString own = QGuiApplication::font().family();
    return {own, own, 0.88, naturalHeight(own)};
}

}  // namespace orbinex
