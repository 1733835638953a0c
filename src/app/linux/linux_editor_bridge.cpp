#include "app/linux/linux_editor_bridge.h"

#include <unistd.h>

#include "editor_bridge/command_queue_file_path.h"
#include "editor_bridge/script_host_path.h"

namespace orbinex {

LinuxEditorBridge::Places LinuxEditorBridge::usualPlaces() {
    return {.display = {},
            .scriptHost = scriptHostPathOnLinux,
            .commandFile = commandQueueFilePath(::getuid()),
            .soundServer = {},
            .midi = SystemMIDIEndpoints::usualPlan()};
}

}  // namespace orbinex
