#include "vm/desktop.h"

#include "input/x11/held_ledger.h"

namespace orbinex::test {

Desktop::Desktop()
    : client_(std::make_unique<XClient>(server_.display())), keyboardMap_(client_->keyboardMap()) {}

testing::AssertionResult Desktop::nothingIsHeldDown() const {
    client_->handleEvents();
    if (!client_->keysDown().empty())
        return testing::AssertionFailure()
               << "the key with code " << client_->keysDown().front() << " is down";
    if (client_->buttonsDown() != 0) return testing::AssertionFailure() << "a button is down";
    if (client_->modifierState() != 0) return testing::AssertionFailure() << "a modifier is set";
    if (client_->keyboardMap() != keyboardMap_)
        return testing::AssertionFailure() << "the keyboard's map is not as it was";
    for (int slot = 0; slot < HeldLedger::slotCount; ++slot) {
        if (client_->hasRootProperty("_ORBINEX_HELD_" + std::to_string(slot)))
            return testing::AssertionFailure() << "a note of what is held is left, number " << slot;
    }
    return testing::AssertionSuccess();
}

}  // namespace orbinex::test
