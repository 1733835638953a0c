#pragma once

#include <QString>
#include <QVariantList>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include "link/bluez/bluez_bus.h"
#include "test_phone/mistake.h"

namespace orbinex::test_phone {

/// One of bluetoothd's methods to call.
struct BluezCall {
    QString path;
    const char* interface = nullptr;
    const char* method = nullptr;
    QVariantList arguments;
    /// What holds once it has been answered without an error.
    std::function<void()> succeeded = [] {};
};

/// Jobs of several calls each, one call at a time.
class CallQueue {
  public:
    using Calls = std::vector<BluezCall>;
    using Plan = std::function<OrMistake<Calls>()>;
    using Done = std::function<void(const std::optional<Mistake>&)>;

    explicit CallQueue(BluezBus& bus) : bus_(bus) {}

    /// Adds a job. `plan` tells its calls, or why there can be none, when all jobs before it are done; `done`
    /// is called once, with the first error, at which the job ends.
    void add(Plan plan, Done done);
    /// Ends all jobs, as nobody is there to answer.
    void abandon();

  private:
    struct Job {
        Plan plan;
        Done done;
    };

    void beginNext();
    void callNext();
    void finish(const std::optional<Mistake>& mistake);

    BluezBus& bus_;
    std::deque<Job> jobs_;
    /// What is left of the first job.
    std::deque<BluezCall> calls_;
    bool isBusy_ = false;
};

}  // namespace orbinex::test_phone
