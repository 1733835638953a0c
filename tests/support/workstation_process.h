#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/line_reader.h"
#include "support/child_process.h"

namespace orbinex::test {

/// A workstation's side of the control surface in a process of its own: tools/midi_workstation. It ends with
/// this object, or with the test.
class WorkstationProcess {
  public:
    /// The program must be called ORBINEX_MIDI_WORKSTATION. Throws std::runtime_error when there is no room
    /// for a process.
    explicit WorkstationProcess(std::vector<std::string> arguments = {});
    WorkstationProcess(const WorkstationProcess&) = delete;
    WorkstationProcess& operator=(const WorkstationProcess&) = delete;
    ~WorkstationProcess();

    /// Types lines into it.
    void play(std::string_view lines) const;
    /// All that it has printed so far.
    const std::vector<std::string>& lines();

  private:
    ChildProcess process_;
    int input_ = -1;
    int output_ = -1;
    LineReader reader_;
    std::vector<std::string> lines_;
};

}  // namespace orbinex::test
