#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <variant>

#include "clip_files.h"
#include "editor_folder.h"
#include "event_loop.h"
#include "midi_studio.h"
#include "phone_user.h"
#include "phone_window.h"
#include "private_desktop.h"
#include "program.h"
#include "report.h"
#include "screen_probe.h"
#include "selection_probe.h"

namespace orbinex::demo {

/// Where the characters of the letter are on the screen: every one is as wide as every other.
struct TextGrid {
    int left = 0;
    int top = 0;
    int characterWidth = 0;
    int lineHeight = 0;

    friend bool operator==(const TextGrid&, const TextGrid&) = default;

    /// The boundary before a column, at half the height of a line, both from 0.
    [[nodiscard]] ScreenProbe::Pointer place(int line, double column) const {
        return {left + static_cast<int>(column * characterWidth), top + line * lineHeight + lineHeight / 2};
    }
};

/// Everything that the chapters of the story act on and look at.
struct Stage {
    EventLoop& loop;
    Report& report;
    PrivateDesktop& desktop;
    ScreenProbe& screen;
    SelectionProbe& selections;
    Program& program;
    PhoneWindow& phoneWindow;
    PhoneUser& user;
    /// The stand-in for an editing application.
    EditorFolder& editor;
    /// The media on its timeline.
    const ClipFiles& clips;
    /// The stand-in for a workstation that is reached by MIDI.
    MidiStudio& studio;

    /// What the letter in the editor must say.
    std::string letter = {};
    /// Known once the letter has been typed.
    TextGrid grid = {};

    /// A step: reads until it is what is expected, or too late, and reports what was read last.
    bool expect(std::string_view name, std::string_view expected, const std::function<std::string()>& read);
    /// The same for something that holds or does not.
    bool expectThat(std::string_view name, std::string_view fact, const std::function<bool()>& holds);
    /// Moves the pointer there, as a person does who watches it.
    void pointAt(ScreenProbe::Pointer place);
    /// The same, with the moment that a person needs to aim. Editors take clicks in two places that follow
    /// one another at once for one run of clicks.
    void aimAt(ScreenProbe::Pointer place);
    /// By a tap in the middle of the window that is filled with this colour, 0xRRGGBB, when it has appeared:
    /// the window manager leaves the focus where the user has just typed.
    void bringToTheFront(std::string_view name, std::uint32_t colour);
    /// What the phone was told last of one kind, of those that `isIt` takes; null before.
    template <class Message, class Condition>
    [[nodiscard]] const Message* lastTold(Condition isIt) const {
        const auto& received = program.phone().received;
        for (std::size_t i = received.size(); i-- > 0;) {
            const auto* message = std::get_if<Message>(&received[i].value);
            if (message && isIt(*message)) return message;
        }
        return nullptr;
    }
    /// As the phone was told; "none" before.
    [[nodiscard]] std::string applicationInFront() const;
    /// Saves with the phone and reads what the editor has written.
    void expectLetter(std::string_view name);
};

// The chapters, in their order.
void openTheDesktop(EventLoop& loop, Report& report, PrivateDesktop& desktop, const ScreenProbe& screen);
void meetThePhone(Stage& stage);
void moveAndClick(Stage& stage);
void typeTheLetter(Stage& stage);
void selectAndCopy(Stage& stage);
void loseTheLinkInADrag(Stage& stage);
void scrollThroughTheLetter(Stage& stage);
void useThePhonesWindow(Stage& stage);
void controlTheEditor(Stage& stage);
/// A part of that chapter: the editor is in front and stands.
void hearTheClips(Stage& stage);
/// The same: what is done in the phone's window reaches the editor.
void mixInThePhonesWindow(Stage& stage);
/// Everything on the screen at once while the editor plays, which the picture shows.
void showEverything(Stage& stage, const std::string& picture);
void restartTheEditor(Stage& stage);
/// The editor is there before and afterwards.
void useAWorkstation(Stage& stage);

// Without the story
void openTheEditorToPlay(Stage& stage);
/// Everything is open and connected.
void setTheStage(Stage& stage);
/// Tells the person what to do, and ends the loop when the phone's window is closed.
void letPlay(Stage& stage);

}  // namespace orbinex::demo
