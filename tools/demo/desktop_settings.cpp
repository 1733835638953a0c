#include "desktop_settings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace orbinex::demo {

namespace {

/// A window becomes active by a click only, so that the phone's first click shows. No keys of its own.
constexpr const char* openboxSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>no</focusNew><followMouse>no</followMouse></focus>
  <placement><policy>Smart</policy><center>yes</center></placement>
  <theme>
    <name>Clearlooks</name>
    <titleLayout>NLIMC</titleLayout>
    <font place="ActiveWindow"><name>DejaVu Sans</name><size>11</size><weight>Bold</weight></font>
    <font place="InactiveWindow"><name>DejaVu Sans</name><size>11</size></font>
  </theme>
  <desktops><number>1</number></desktops>
  <mouse>
    <context name="Client">
      <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
    </context>
  </mouse>
</openbox_config>
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

}  // namespace

QString windowManagerSettings(const QString& configFolder) {
    return configFolder + QStringLiteral("/openbox/rc.xml");
}

bool writeDesktopSettings(const QString& configFolder) {
    const QString style = QString::fromUtf8(gtkStyle).arg(hex(paperColour), hex(caretColour));
    return write(windowManagerSettings(configFolder), QString::fromUtf8(openboxSettings)) &&
           write(configFolder + QStringLiteral("/gtk-3.0/settings.ini"), QString::fromUtf8(gtkSettings)) &&
           write(configFolder + QStringLiteral("/gtk-3.0/gtk.css"), style) &&
           write(configFolder + QStringLiteral("/glib-2.0/settings/keyfile"),
                 QString::fromUtf8(editorSettings));
}

}  // namespace orbinex::demo
