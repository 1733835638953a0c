#include "desktop_settings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace orbinex::demo {

namespace {

/// A window becomes active by a click only, so that the phone's clicks show. No keys of its own.
constexpr const char* openboxSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>no</focusNew><followMouse>no</followMouse></focus>
  <placement><policy>Smart</policy><center>yes</center></placement>
  <theme>
    <name>Demo</name>
    <titleLayout>LIMC</titleLayout>
    <font place="ActiveWindow"><name>League Spartan</name><size>11</size></font>
    <font place="InactiveWindow"><name>League Spartan</name><size>11</size></font>
  </theme>
  <desktops><number>1</number></desktops>
  <applications>
    <application class="Mousepad" type="normal">%1</application>
    <application name="orbinex_demo" type="normal">%2</application>
    <application name="orbinex_demo_phone" type="normal">%3</application>
  </applications>
  <mouse>
    <context name="Client">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
    </context>
  </mouse>
</openbox_config>
)";

constexpr const char* windowPlace = R"(<position force="yes"><x>%1</x><y>%2</y></position>)";

/// Window frames in the colours of the interface.
constexpr const char* frameTheme = R"(border.width: 1
padding.width: 10
padding.height: 6
window.handle.width: 0
window.client.padding.width: 0
window.client.padding.height: 0
window.active.border.color: #353C48
window.inactive.border.color: #262B35
window.active.title.separator.color: #262B35
window.inactive.title.separator.color: #1E232C
window.active.title.bg: Flat Solid
window.active.title.bg.color: #1A1E26
window.inactive.title.bg: Flat Solid
window.inactive.title.bg.color: #13161C
window.active.label.bg: Parentrelative
window.inactive.label.bg: Parentrelative
window.label.text.justify: center
window.active.label.text.color: #F1F4F8
window.inactive.label.text.color: #A6B0BE
window.*.button.*.bg: Parentrelative
window.active.button.*.image.color: #A6B0BE
window.inactive.button.*.image.color: #4A5361
menu.border.width: 1
menu.border.color: #353C48
)";

constexpr const char* gtkSettings = R"([Settings]
gtk-theme-name=Adwaita
gtk-cursor-blink=false
gtk-enable-animations=false
gtk-recent-files-enabled=false
)";

constexpr const char* gtkStyle = R"(textview text { background-color: #%1; color: #1d2733; caret-color: #%2; }
)";

constexpr const char* editorSettings = R"([org/xfce/mousepad/preferences/view]
font-name='DejaVu Sans Mono 15'
use-default-monospace-font=false

[org/xfce/mousepad/preferences/window]
path-in-title=false

[org/xfce/mousepad/state/window]
width=uint32 1040
height=uint32 600
)";

bool write(const QString& path, const QString& text) {
    if (!QDir().mkpath(QFileInfo(path).path())) return false;
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0 && file.flush();
}

QString hex(std::uint32_t colour) {
    return QString::number(colour, 16).rightJustified(6, QLatin1Char('0'));
}

QString placeText(const WindowPlaces::Place& place) {
    return QString::fromUtf8(windowPlace).arg(place.x).arg(place.y);
}

}  // namespace

QString windowManagerSettings(const QString& home) {
    return home + QStringLiteral("/config/openbox/rc.xml");
}

bool writeDesktopSettings(const QString& home, const WindowPlaces& places) {
    const QString config = home + QStringLiteral("/config");
    const QString windows =
        QString::fromUtf8(openboxSettings)
            .arg(placeText(places.letter), placeText(places.mainWindow), placeText(places.phone));
    const QString style = QString::fromUtf8(gtkStyle).arg(hex(paperColour), hex(caretColour));
    return write(windowManagerSettings(home), windows) &&
           write(home + QStringLiteral("/data/themes/Demo/openbox-3/themerc"),
                 QString::fromUtf8(frameTheme)) &&
           write(config + QStringLiteral("/gtk-3.0/settings.ini"), QString::fromUtf8(gtkSettings)) &&
           write(config + QStringLiteral("/gtk-3.0/gtk.css"), style) &&
           write(config + QStringLiteral("/glib-2.0/settings/keyfile"), QString::fromUtf8(editorSettings));
}

}  // namespace orbinex::demo
