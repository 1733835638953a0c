#include "test_phone/call_queue.h"

#include <utility>

namespace orbinex::test_phone {

void CallQueue::add(Plan plan, Done done) {
    jobs_.push_back({std::move(plan), std::move(done)});
    if (!isBusy_) beginNext();
}

void CallQueue::abandon() {
    bus_.forgetCalls();
    calls_.clear();
    isBusy_ = false;
    for (const auto& job : std::exchange(jobs_, {})) job.done(Mistake{"bluetoothd has gone"});
}

void CallQueue::beginNext() {
    if (jobs_.empty()) return;
    isBusy_ = true;
    auto plan = jobs_.front().plan();
    if (const auto* mistake = std::get_if<Mistake>(&plan)) return finish(*mistake);
    for (auto& call : std::get<Calls>(plan)) calls_.push_back(std::move(call));
    callNext();
}

void CallQueue::callNext() {
    if (calls_.empty()) return finish(std::nullopt);
    const auto call = std::move(calls_.front());
    calls_.pop_front();
    bus_.call(call.path, call.interface, call.method, call.arguments, BluezBus::ordinaryLimit,
              [this, call](const BluezBus::Reply& reply) {
                  if (reply.error) {
                      const auto text =
                          QString("%1: %2 (%3)").arg(call.method, reply.error->text, reply.error->name);
                      return finish(Mistake{text.toStdString()});
                  }
                  call.succeeded();
                  callNext();
              });
}

void CallQueue::finish(const std::optional<Mistake>& mistake) {
    calls_.clear();
    isBusy_ = false;
    const auto job = std::move(jobs_.front());
    jobs_.pop_front();
    job.done(mistake);
    if (!isBusy_) beginNext();
}

}  // namespace orbinex::test_phone
