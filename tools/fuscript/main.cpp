// Runs a script as an editor's scripting host does, with a model of the editor in place of one.

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <lua.hpp>
#include <string_view>

#include "editor_model.h"

namespace {

constexpr long nanosecond = 1'000'000'000;

/// Rounds that are left until the host ends by itself; negative: it never does. While it counts, time is
/// virtual: it is what the script has waited for.
long roundsLeft = -1;
double secondsWaited = 0;

/// Seconds since a moment of CLOCK_MONOTONIC in nanoseconds; in virtual time, since the host was started.
int secondsSince(lua_State* state) {
    const double moment = luaL_checknumber(state, 1);
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    const double now = static_cast<double>(time.tv_sec) * nanosecond + static_cast<double>(time.tv_nsec);
    lua_pushnumber(state, roundsLeft >= 0 ? secondsWaited : (now - moment) / nanosecond);
    return 1;
}

int wait(lua_State* state) {
    const double seconds = luaL_checknumber(state, 1);
    if (roundsLeft >= 0) {
        secondsWaited += seconds;
        if (--roundsLeft > 0) return 0;
        std::fflush(stdout);
        std::exit(0);
    }
    const double limited = seconds > 0 && seconds < 60 ? seconds : 0;
    const auto whole = static_cast<time_t>(limited);
    const timespec time{whole, static_cast<long>((limited - static_cast<double>(whole)) * nanosecond)};
    ::nanosleep(&time, nullptr);
    return 0;
}

bool run(lua_State* state, std::string_view text, const char* name, int arguments) {
    if (luaL_loadbuffer(state, text.data(), text.size(), name) == 0) {
        lua_insert(state, -1 - arguments);
        if (lua_pcall(state, arguments, 0, 0) == 0) return true;
    }
    std::fprintf(stderr, "fuscript: %s\n", lua_tostring(state, -1));
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    const bool isUsual = argc == 5 && std::string_view(argv[1]) == "-l" &&
                         std::string_view(argv[2]) == "lua" && std::string_view(argv[3]) == "-x" &&
                         // Else it would be an option, and -x without its script.
                         !std::string_view(argv[4]).starts_with('-');
    if (!isUsual) {
        std::fputs("usage: fuscript -l lua -x SCRIPT\n", stderr);
        return 2;
    }
    const char* const folder = std::getenv("ORBINEX_EDITOR_FOLDER");
    if (const char* const rounds = std::getenv("ORBINEX_EDITOR_ROUNDS")) roundsLeft = std::atol(rounds);

    lua_State* const state = luaL_newstate();
    luaL_openlibs(state);
    lua_pushstring(state, folder ? folder : "/nonexistent");
    lua_pushcfunction(state, secondsSince);
    lua_pushcfunction(state, wait);
    const bool isDone =
        run(state, orbinex::editorModel(), "editor_model.lua", 3) && run(state, argv[4], "script", 0);
    lua_close(state);
    return isDone ? 0 : 1;
}
