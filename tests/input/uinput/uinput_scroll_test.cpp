#include "input/uinput/uinput_scroll.h"

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <system_error>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include "support/allocation_counter.h"

namespace orbinex::test {
namespace {

/// Type, code and value.
using Event = std::tuple<int, int, int>;
using Events = std::vector<Event>;

constexpr Event mark{EV_SYN, SYN_REPORT, 0};

Event turned(int code, int value) {
    return {EV_REL, code, value};
}

/// A file in memory in the kernel's place.
class Kernel {
  public:
    Kernel()
        : fd_(::memfd_create("kernel", MFD_CLOEXEC)),
          scroll_(std::make_unique<UinputScroll>(::dup(fd_), "a device")) {}
    Kernel(const Kernel&) = delete;
    Kernel& operator=(const Kernel&) = delete;
    ~Kernel() { ::close(fd_); }

    bool scroll(const ScrollEvent& event) { return scroll_->scroll(event); }

    void dropRemainder() { scroll_->dropRemainder(); }

    /// The same while only so many bytes more are taken.
    bool scrollWithRoomFor(std::size_t bytes, const ScrollEvent& event) {
        rlimit before{};
        ::getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{static_cast<rlim_t>(::lseek(fd_, 0, SEEK_END)) + bytes, before.rlim_max};
        const auto previous = ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const bool isTaken = scroll_->scroll(event);
        ::setrlimit(RLIMIT_FSIZE, &before);
        ::signal(SIGXFSZ, previous);
        return isTaken;
    }

    /// Every event since the last call.
    Events take() {
        Events events;
        input_event event{};
        while (::pread(fd_, &event, sizeof event, seen_) == sizeof event) {
            events.emplace_back(event.type, event.code, event.value);
            seen_ += sizeof event;
        }
        EXPECT_EQ(seen_, ::lseek(fd_, 0, SEEK_END)) << "an event that was cut";
        return events;
    }

  private:
    int fd_;
    off_t seen_ = 0;
    std::unique_ptr<UinputScroll> scroll_;
};

TEST(UinputScroll, writesStepsAndClicksOfBothAxesWithAMarkAfterEach) {
    const struct {
        const char* name;
        ScrollEvent event;
        Events events;
    } rows[] = {
        {"up", {10, 0}, {turned(REL_WHEEL_HI_RES, 24), mark}},
        {"down", {-10, 0}, {turned(REL_WHEEL_HI_RES, -24), mark}},
        {"left", {0, 10}, {turned(REL_HWHEEL_HI_RES, -24), mark}},
        {"right", {0, -10}, {turned(REL_HWHEEL_HI_RES, 24), mark}},
        {"a click up", {50, 0}, {turned(REL_WHEEL_HI_RES, 120), turned(REL_WHEEL, 1), mark}},
        {"two clicks right", {0, -100}, {turned(REL_HWHEEL_HI_RES, 240), turned(REL_HWHEEL, 2), mark}},
        {"both",
         {-50, 50},
         {turned(REL_WHEEL_HI_RES, -120), turned(REL_WHEEL, -1), turned(REL_HWHEEL_HI_RES, -120),
          turned(REL_HWHEEL, -1), mark}},
        {"as far as can be said",
         {INT32_MAX, INT32_MIN},
         {turned(REL_WHEEL_HI_RES, 1200), turned(REL_WHEEL, 10), turned(REL_HWHEEL_HI_RES, 1200),
          turned(REL_HWHEEL, 10), mark}},
        {"nothing", {0, 0}, {}},
    };
    for (const auto& row : rows) {
        Kernel kernel;
        EXPECT_TRUE(kernel.scroll(row.event)) << row.name;
        EXPECT_EQ(kernel.take(), row.events) << row.name;
    }
}

TEST(UinputScroll, carriesTheRestsOfBothAxesApart) {
    Kernel kernel;
    for (const ScrollEvent event : {ScrollEvent{26, 1}, ScrollEvent{24, 1}, ScrollEvent{-1, 1}})
        EXPECT_TRUE(kernel.scroll(event));
    EXPECT_EQ(kernel.take(),
              (Events{turned(REL_WHEEL_HI_RES, 62), turned(REL_HWHEEL_HI_RES, -2), mark,
                      turned(REL_WHEEL_HI_RES, 58), turned(REL_WHEEL, 1), turned(REL_HWHEEL_HI_RES, -2), mark,
                      turned(REL_WHEEL_HI_RES, -2), turned(REL_HWHEEL_HI_RES, -3), mark}));
    kernel.dropRemainder();
    EXPECT_TRUE(kernel.scroll({50, -49}));
    EXPECT_EQ(kernel.take(), (Events{turned(REL_WHEEL_HI_RES, 120), turned(REL_WHEEL, 1),
                                     turned(REL_HWHEEL_HI_RES, 117), mark}));
}

TEST(UinputScroll, anEventThatIsNotTakenLeavesTheWheelsWhereTheyWere) {
    Kernel kernel;
    ASSERT_TRUE(kernel.scroll({49, 0}));
    kernel.take();
    EXPECT_FALSE(kernel.scrollWithRoomFor(0, {1, 1}));
    EXPECT_TRUE(kernel.take().empty());
    ASSERT_TRUE(kernel.scroll({1, 0}));
    EXPECT_EQ(kernel.take(), (Events{turned(REL_WHEEL_HI_RES, 3), turned(REL_WHEEL, 1), mark}));
}

TEST(UinputScroll, theRestOfWhatIsTakenInPartGoesOutFirst) {
    const Events both{turned(REL_WHEEL_HI_RES, 120), turned(REL_WHEEL, 1), turned(REL_HWHEEL_HI_RES, -120),
                      turned(REL_HWHEEL, -1), mark};
    const Events then{turned(REL_WHEEL_HI_RES, -24), mark};
    Events all = both;
    all.insert(all.end(), then.begin(), then.end());
    for (std::size_t room = 1; room < both.size() * sizeof(input_event); ++room) {
        Kernel kernel;
        EXPECT_TRUE(kernel.scrollWithRoomFor(room, {50, 50}));
        EXPECT_FALSE(kernel.scrollWithRoomFor(0, {-10, 0})) << "the rest has not gone out";
        // All of it but a byte.
        const std::size_t rest = both.size() * sizeof(input_event) - room;
        EXPECT_FALSE(kernel.scrollWithRoomFor(rest - 1, {-10, 0}));
        EXPECT_TRUE(kernel.scroll({-10, 0}));
        EXPECT_EQ(kernel.take(), all) << room;
    }
}

TEST(UinputScroll, allocatesNothing) {
    Kernel kernel;
    EXPECT_EQ(allocationsDuring([&] { kernel.scroll({-70, 130}); }), 0U);
    EXPECT_EQ(kernel.take().size(), 5U);
}

TEST(UinputScroll, tellsWhyThereIsNoDevice) {
    std::error_code error;
    EXPECT_EQ(UinputScroll::open(error, "/nonexistent/uinput"), nullptr);
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
    EXPECT_EQ(UinputScroll::open(error, "/"), nullptr);
    EXPECT_EQ(error, std::errc::is_a_directory);
    // Something else that can be opened knows none of the requests.
    EXPECT_EQ(UinputScroll::open(error, "/dev/null"), nullptr);
    EXPECT_EQ(error, std::errc::inappropriate_io_control_operation);
}

}  // namespace
}  // namespace orbinex::test
