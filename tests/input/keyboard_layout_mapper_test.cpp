#include "input/keyboard_layout_mapper.h"

#include <gtest/gtest.h>

#include "sim/scripted_layout.h"

namespace orbinex {
namespace {

constexpr ModifierFlags plain{};
constexpr ModifierFlags shift = ModifierFlags::shift;
constexpr ModifierFlags option = ModifierFlags::option;

TEST(KeyboardLayoutMapper, mapsLettersToTheirKeysWithTheFewestModifiers) {
    ScriptedLayoutSource source;
    const KeyboardLayoutMapper mapper(source);
    EXPECT_EQ(mapper.layoutName(), "U.S.");
    EXPECT_EQ(mapper.table().find("a"), (KeyMapping{0, plain}));
    EXPECT_EQ(mapper.table().find("A"), (KeyMapping{0, shift}));
    EXPECT_EQ(mapper.table().find("å"), (KeyMapping{0, option}));
    EXPECT_EQ(mapper.table().find("ж"), std::nullopt);
}

TEST(KeyboardLayoutMapper, firstProducerWinsByCombinationThenByKeyOrder) {
    ScriptedLayout layout;
    layout.key(47, plain, "x").key(1, shift, "x");
    layout.key(94, plain, "y").key(50, plain, "y");
    layout.key(2, shift | option, "z").key(3, option, "z");
    ScriptedLayoutSource source(layout);
    const KeyboardLayoutMapper mapper(source);
    EXPECT_EQ(mapper.table().find("x"), (KeyMapping{47, plain}));
    EXPECT_EQ(mapper.table().find("y"), (KeyMapping{50, plain}));
    EXPECT_EQ(mapper.table().find("z"), (KeyMapping{3, option}));
}

TEST(KeyboardLayoutMapper, leavesOutWhatIsNotOneTypedCharacterOfACandidateKey) {
    ScriptedLayout layout;
    layout.key(0, plain, "ab").key(1, plain, "").key(2, plain, "\x01").key(3, plain, "\x7F");
    layout.key(36, plain, "r").key(48, plain, "t").key(51, plain, "d").key(82, plain, "0");
    layout.deadKey(4, plain);
    // One user-perceived character of two scalars counts.
    layout.key(5, plain, "g\xCC\x83");
    ScriptedLayoutSource source(layout);
    const KeyboardLayoutMapper mapper(source);
    EXPECT_EQ(mapper.table().size(), 1U);
    EXPECT_EQ(mapper.table().find("g\xCC\x83"), (KeyMapping{5, plain}));
}

TEST(KeyboardLayoutMapper, canonicallyEquivalentTextFindsTheSameKey) {
    ScriptedLayout layout;
    layout.key(0, plain, "e\xCC\x81").key(1, shift, "\xC3\xA9");
    ScriptedLayoutSource source(layout);
    const KeyboardLayoutMapper mapper(source);
    EXPECT_EQ(mapper.table().find("\xC3\xA9"), (KeyMapping{0, plain}));
    EXPECT_EQ(mapper.table().find("e\xCC\x81"), (KeyMapping{0, plain}));
}

TEST(KeyboardLayoutMapper, followsTheSelectionAndFallsBackToALatinLayout) {
    ScriptedLayout russian{"Russian", {}};
    russian.key(0, plain, "ф");
    ScriptedLayout latin{"ABC", {}};
    latin.key(7, plain, "a");
    ScriptedLayoutSource source;
    const KeyboardLayoutMapper mapper(source);

    source.select(russian);
    EXPECT_EQ(mapper.layoutName(), "Russian");
    EXPECT_EQ(mapper.table().find("a"), std::nullopt);
    EXPECT_EQ(mapper.table().find("ф"), (KeyMapping{0, plain}));

    source.select(std::nullopt);
    EXPECT_EQ(mapper.layoutName(), "");
    EXPECT_EQ(mapper.table().size(), 0U);

    source.asciiCapable = latin;
    source.select(std::nullopt);
    EXPECT_EQ(mapper.layoutName(), "ABC");
    EXPECT_EQ(mapper.table().find("a"), (KeyMapping{7, plain}));
}

TEST(KeyboardLayoutMapper, endsBeforeItsSourceWithoutBeingCalledAgain) {
    ScriptedLayoutSource source;
    { const KeyboardLayoutMapper mapper(source); }
    source.select(std::nullopt);
}

}  // namespace
}  // namespace orbinex
