#include "editor_bridge/editor_identity.h"

#include <gtest/gtest.h>

namespace orbinex {
namespace {

TEST(EditorIdentity, isFoundInsideABundleIdentifier) {
    const std::pair<const char*, std::optional<std::string_view>> rows[] = {
        {"com.blackmagic-design.DaVinciResolve", resolveBundleID},
        {"COM.BLACKMAGIC-DESIGN.DAVINCIRESOLVE.beta", resolveBundleID},
        {"com.apple.FinalCutTrial", "com.apple.FinalCut"},
        {"com.apple.logic10", "com.apple.logic10"},
        {"x.com.avid.protools.y", "com.avid.ProTools"},
        {"com.adobe.premierepro.24", "com.adobe.PremierePro"},
        {"com.adobe.PremierePro+com.apple.logic10", "com.apple.logic10"},
        {"com.apple.logic", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [bundleID, editor] : rows) EXPECT_EQ(knownEditor(bundleID), editor) << bundleID;
}

TEST(EditorIdentity, ofResolveIsAnIdentifierOrAName) {
    EXPECT_TRUE(isResolve({"com.Blackmagic-Design.davinciresolve", "Anything"}));
    EXPECT_TRUE(isResolve({"", "davinci resolve Studio 19"}));
    EXPECT_FALSE(isResolve({"com.blackmagic-design.DaVinciResolve.beta", "Beta"}));
    EXPECT_FALSE(isResolve({"resolve", "Resolve"}));
    EXPECT_FALSE(isResolve({"", ""}));
}

}  // namespace
}  // namespace orbinex
