#include "editor_bridge/known_editors.h"

#include <string>

#include "editor_bridge/editor_identity.h"

namespace orbinex {

/// Of a workstation that is not among them, faders that it reports would not be taken for the session's.
/// "logic" alone would be a logic analyser's program, and many a program is called "waveform" or "muse".
std::span<const KnownEditor> knownEditors() {
    static const std::vector<KnownEditor> editors{
        {{std::string(resolveBundleID), "DaVinci Resolve"},
         {"resolve", "davinci resolve", "davinciresolve", "davinci-resolve"}},
        {{"com.apple.logic10", "Logic Pro"}, {"logic pro", "logic pro x", "logicpro"}},
        {{"com.apple.FinalCut", "Final Cut Pro"}, {"final cut pro", "finalcutpro"}},
        {{"com.avid.ProTools", "Pro Tools"}, {"pro tools", "protools"}},
        {{"com.adobe.PremierePro", "Adobe Premiere Pro"},
         {"adobe premiere pro", "adobe premiere pro (beta)", "premiere pro"}},
        // Made for Linux.
        {{"org.ardour.Ardour", "Ardour"}, {"ardour", "ardour-#"}},
        {{"com.harrisonaudio.Mixbus", "Mixbus"}, {"mixbus", "mixbus32c"}},
        {{"com.cockos.reaper", "REAPER"}, {"reaper"}},
        {{"com.bitwig.BitwigStudio", "Bitwig Studio"},
         {"com.bitwig.bitwigstudio", "bitwig-studio", "bitwig studio"}},
        {{"com.tracktion.Waveform", "Waveform"}, {"waveform#"}},
        {{"com.renoise.Renoise", "Renoise"}, {"renoise", "renoise-#"}},
        {{"org.rncbc.qtractor", "Qtractor"}, {"qtractor", "org.rncbc.qtractor"}},
        {{"org.zrythm.Zrythm", "Zrythm"}, {"zrythm", "org.zrythm.zrythm"}},
        {{"com.rosegardenmusic.rosegarden", "Rosegarden"}, {"rosegarden", "com.rosegardenmusic.rosegarden"}},
        {{"io.github.muse_sequencer.Muse", "MusE"}, {"muse#"}},
        {{"io.lmms.LMMS", "LMMS"}, {"lmms", "io.lmms.lmms"}},
        // Met under Wine.
        {{"com.ableton.live", "Ableton Live"},
         {"ableton live", "ableton live # suite", "ableton live # standard", "ableton live # intro",
          "ableton live # lite", "ableton live # trial", "ableton live # beta"}},
        {{"com.steinberg.cubase", "Cubase"}, {"cubase", "cubase#"}},
        {{"com.steinberg.nuendo", "Nuendo"}, {"nuendo", "nuendo#"}},
        {{"com.presonus.studioone", "Studio One"}, {"studio one"}},
        {{"com.image-line.flstudio", "FL Studio"}, {"fl64", "fl studio"}},
    };
    return editors;
}

}  // namespace orbinex
