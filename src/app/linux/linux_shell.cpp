#include "app/linux/linux_shell.h"

#include <utility>

#include "app/linux/detached_program.h"
#include "app/linux/settings_panels.h"
#include "app/linux/single_instance.h"

namespace orbinex {

LinuxShell::LinuxShell(MainQueue& queue, SingleInstance& instance, std::function<void()> quit)
    : place_(ownPlace()),
      folders_(UserFolders::fromEnvironment()),
      opener_(currentDesktops(), folders_.config, startDetached),
      loginItem_({folders_.config, place_.program, currentDesktops()},
                 [this] { return opener_.openPanel(SettingsPanel::loginItems); }),
      bundle_(place_, folders_,
              {queue,
               opener_,
               startDetached,
               {[&instance] { instance.release(); }, [&instance] { return instance.isTaken(); },
                [&instance] { instance.reclaim(); }},
               [this](const std::string& program) { loginItem_.follow(program); },
               std::move(quit)}) {}

}  // namespace orbinex
