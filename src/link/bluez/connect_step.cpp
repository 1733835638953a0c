#include "link/bluez/connect_step.h"

namespace orbinex {

ConnectStep nextConnectStep(const ConnectFacts& facts) {
    const bool isResting = facts.now < facts.restsUntil;
    if (facts.isReported && !facts.isConnected) {
        // A pairing that fails takes the connection along, and its answer tells why.
        return facts.isPairing && !facts.isCancelling ? ConnectStep::none : ConnectStep::reportDisconnected;
    }
    if (facts.isDisconnecting) return ConnectStep::none;
    if (facts.isCancelling) {
        if (!facts.isConnected && !facts.isConnecting) return ConnectStep::endCancelling;
        return isResting ? ConnectStep::waitForRest : ConnectStep::disconnect;
    }
    if (!facts.isWanted) return ConnectStep::none;
    if (facts.isConnected) return facts.isProven ? ConnectStep::reportConnected : ConnectStep::waitForProof;
    if (facts.isConnecting || !facts.isKnown) return ConnectStep::none;
    // BlueZ looks for a device by itself, but for some 40 s only and at the cost of other connections; so it
    // is asked for what was heard. A person does not wait for that.
    if (!facts.isInSight && !facts.isUsersWish) return ConnectStep::none;
    return isResting ? ConnectStep::waitForRest : ConnectStep::connect;
}

}  // namespace orbinex
