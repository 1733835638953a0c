#include "app/linux/linux_shell.h"

#include <utility>

#include "app/linux/detached_program.h"
#include "app/linux/settings_panels.h"
#include "app/linux/single_instance.h"

namespace orbinex {

LinuxShell::LinuxShell(MainQueue& queue, SingleInstance& instance, Actions actions)
    : place_(ownPlace()),
      folders_(UserFolders::fromEnvironment()),
      opener_(currentDesktops(), folders_.config, [](const auto& command) { return startDetached(command); }),
      loginItem_({folders_.config, place_.program, currentDesktops()},
                 [this] { return opener_.openPanel(SettingsPanel::loginItems); }),
      bundle_(place_, folders_,
              {queue,
               opener_,
               [token = std::move(actions.launchToken)](const auto& command) {
                   return startDetached(command, token());
               },
               {[&instance] { instance.release(); }, [&instance] { return instance.isTaken(); },
                [&instance] { instance.reclaim(); }},
               [this](const std::string& program) { loginItem_.follow(program); },
               std::move(actions.quit)}) {}

}  // namespace orbinex
