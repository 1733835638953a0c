#pragma once

#include "editor_bridge/editor_bridge.h"

namespace orbinex {

/// The bridge of a computer without any supported editor: it watches nothing, and commands have no effect.
class IdleEditorBridge final : public EditorBridge {
  public:
    void setBLEClientConnected(bool) override {}
    void handleCommand(const DAWCommand&) override {}
    void handleTransportKey(std::uint16_t, ModifierFlags) override {}
};

}  // namespace orbinex
