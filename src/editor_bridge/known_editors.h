#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "editor_bridge/workspace.h"

namespace orbinex {

/// The bundle identifier of the editor that the bridge script serves.
inline constexpr std::string_view resolveBundleID = "com.blackmagic-design.DaVinciResolve";

/// An editor or workstation whose session the iPhone shows while it is in front.
struct KnownEditor {
    /// As it is told, with the identifier spelled as the editor itself does.
    RunningApplication application;
    /// What its programs and windows are called where applications have no identifiers, in lower case and
    /// without ".exe". A '#' stands for a version, such as "13" or "8.4.0".
    std::vector<std::string_view> names;
    /// An iPhone may not know the identifier: it is told the name as well, as the label of the telemetry. The
    /// identifier is told all the same, since what the workstation reports of its faders is taken by it.
    bool isToldByName = false;
};

/// All of them, in the order in which they are looked for, Resolve first. They live for ever, and nothing
/// here allocates once they are made.
std::span<const KnownEditor> knownEditors();

/// The first whose identifier occurs in this one, in letters of either case; null for any other application.
const KnownEditor* editorWithin(std::string_view bundleID);
/// The one whose program or whose windows are called so on Linux, natively or under Wine; null for any other
/// name. `name` is a program's file name or a window's class, in letters of either case, with or without
/// ".exe".
const RunningApplication* editorNamed(std::string_view name);
/// The one with exactly this identifier; null for anything else.
const RunningApplication* editorWithID(std::string_view bundleID);

/// True for Resolve's identifier exactly, in letters of either case.
bool isResolveID(std::string_view bundleID);
/// By its identifier, or by its name.
bool isResolve(const RunningApplication& application);

}  // namespace orbinex
