#pragma once

#include <memory>
#include <string>

#include "audio/background/background_source_opener.h"
#include "audio/background/media_threads.h"
#include "audio/codec/open_codec.h"
#include "audio/linux/linux_clip_media.h"
#include "base/main_queue.h"
#include "editor_bridge/app_watcher_daemon.h"
#include "editor_bridge/linux/linux_script_host.h"
#include "editor_bridge/linux/pulse_volume.h"
#include "editor_bridge/linux/tmp_command_file.h"
#include "editor_bridge/linux/x11_workspace.h"
#include "editor_bridge/midi/system_midi_endpoints.h"

namespace orbinex {

/// The editor bridge on what a Linux desktop has. Needs the Qt event loop.
class LinuxEditorBridge {
  public:
    struct Places {
        /// X display; empty: the one in the environment.
        std::string display;
        /// The editor's scripting host; it need not exist.
        std::string scriptHost;
        std::string commandFile;
        /// Address of the sound server; empty: the session's.
        std::string soundServer;
        /// Where the MIDI surface may be.
        MIDIKeeper::Plan midi = SystemMIDIEndpoints::usualPlan();
    };

    LinuxEditorBridge(MainQueue& queue, const Places& places)
        : workspace_(queue, places.display),
          scriptHost_(places.scriptHost, queue),
          commandFile_(places.commandFile),
          volume_(queue, places.soundServer),
          clips_(std::make_shared<LinuxClipMedia>(openCodec, mediaThreads_.workers()),
                 mediaThreads_.workers()),
          midi_(queue, places.midi),
          daemon_({queue, workspace_, scriptHost_, commandFile_, volume_, clips_, midi_}) {}

    AppWatcherDaemon& daemon() { return daemon_; }
    const SystemVolume& volume() const { return volume_; }

    /// Of this user, with the editor in its usual place.
    static Places usualPlaces();

  private:
    X11Workspace workspace_;
    LinuxScriptHost scriptHost_;
    TmpCommandFile commandFile_;
    PulseVolume volume_;
    MediaThreads mediaThreads_;
    BackgroundSourceOpener clips_;
    SystemMIDIEndpoints midi_;
    AppWatcherDaemon daemon_;
};

}  // namespace orbinex
