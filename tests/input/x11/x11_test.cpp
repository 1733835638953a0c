#include "input/x11/x11_test.h"

#include <X11/Xlib.h>

namespace orbinex::test {

std::unique_ptr<PrivateXServer> X11Test::server;

void X11Input::sync() {
    XSync(connection->display(), False);
}

void X11Input::settle() {
    sync();
    connection->processEvents();
    queue.advance(X11KeyboardLayoutSource::settlingTime);
}

void X11Test::SetUp() {
    client = std::make_unique<XClient>(server->display());
    const auto [x, y] = client->pointer();
    client->warpPointerBy(640 - x, 450 - y);
    selectLayout("us");
}

void X11Test::selectLayout(const std::string& arguments) {
    ASSERT_TRUE(server->run("setxkbmap -option '' " + arguments)) << arguments;
    client->handleEvents();
    keyboardMapBefore = client->keyboardMap();
}

void X11Test::TearDown() {
    client->handleEvents();
    EXPECT_TRUE(client->keysDown().empty()) << client->keysDown().front();
    EXPECT_EQ(client->buttonsDown(), 0U);
    EXPECT_EQ(client->modifierState(), 0U);
    EXPECT_EQ(client->keyboardMap(), keyboardMapBefore);
    for (int slot = 0; slot < HeldLedger::slotCount; ++slot) {
        EXPECT_FALSE(client->hasRootProperty("_ORBINEX_HELD_" + std::to_string(slot)));
    }
}

void X11Test::letTimePass(X11Input& input) {
    do {
        input.sync();
        client->handleEvents();
    } while (input.queue.advanceToNext());
    input.sync();
}

std::string X11Test::typed(X11Input& input, const std::string& text, ModifierFlags modifiers) {
    client->takeEvents();
    input.manager.handle({DecodedPacket::Text{text, modifiers, std::nullopt}});
    letTimePass(input);
    return client->takeText();
}

}  // namespace orbinex::test
