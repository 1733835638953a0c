#include "app/relocation_alert.h"

namespace orbinex {

RelocationAlert moveOffer() {
    return {.kind = RelocationAlert::Kind::offer,
            .title = "Move Orbinex to Applications?",
            .message =
                "Orbinex needs to run from your Applications folder so that macOS Accessibility "
                "permissions and Open at Login remain active across restarts.\n\n"
                "Would you like to move it to Applications now?",
            .buttons = {"Move to Applications", "Do Not Move"},
            .suppression = "Do not ask again"};
}

RelocationAlert manualMoveInstructions() {
    return {.kind = RelocationAlert::Kind::manualMove,
            .title = "Action Required: Drag to Applications",
            .message =
                "Please drag Orbinex into the Applications folder shown in Finder to ensure seamless "
                "permissions and login item support.",
            .buttons = {okButton},
            .suppression = {}};
}

}  // namespace orbinex
