import QtQuick

Label {
    font.pixelSize: Theme.headingSize
    Accessible.role: Accessible.Heading
}
