#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

#include <gtest/gtest.h>

#include "audio/r3d_audio_clip_reader.h"
#include "sim/r3d_clip_writer.h"
#include "sim/simulated_clip_media.h"

namespace orbinex {
namespace {

using Frames = std::vector<R3DFrame>;

Frames noise(std::size_t count) {
    std::mt19937 random(9);
    std::uniform_int_distribution<std::int32_t> sample(-0x80'0000, 0x7F'FFFF);
    Frames frames(count);
    for (auto& frame : frames) frame = {sample(random), sample(random)};
    return frames;
}

/// A clip whose segments lie at /A_001.R3D and on.
struct Clip {
    explicit Clip(const std::vector<Bytes>& segments) {
        for (std::size_t i = 0; i < segments.size(); ++i) {
            files.push_back(std::make_shared<Bytes>(segments[i]));
            media.files["/A_00" + std::to_string(i + 1) + ".R3D"] = files.back();
        }
        reader = R3DAudioClipReader::create("/A_001.R3D", media);
    }
    MonoRead read(std::int64_t start, std::size_t count) {
        buffer.assign(count + 1, 77.0F);
        const auto result = reader->readMono(start, count, std::span(buffer).first(count));
        EXPECT_EQ(buffer[count], 77.0F);
        return result;
    }
    SimulatedClipMedia media;
    std::vector<std::shared_ptr<Bytes>> files;
    std::shared_ptr<R3DAudioClipReader> reader;
    std::vector<float> buffer;
};

double value(std::int32_t sample) {
    return sample / 8'388'608.0;
}

/// That the clip's frames from `start` on, `count` of them, were read.
void expectFrames(Clip& clip, const Frames& frames, std::size_t start, std::size_t count) {
    const auto result = clip.read(static_cast<std::int64_t>(start), count);
    const auto expected = std::min(count, frames.size() - start);
    ASSERT_EQ(result.framesRead, expected) << start << " + " << count;
    double peak = 0;
    double sum = 0;
    for (std::size_t i = 0; i < expected; ++i) {
        const double left = value(frames[start + i].left);
        const double right = value(frames[start + i].right);
        ASSERT_EQ(clip.buffer[i],
                  static_cast<float>(static_cast<float>(left) + static_cast<float>(right)) * 0.5F);
        peak = std::max({peak, std::fabs(left), std::fabs(right)});
        sum += (left * left + right * right) / 2;
    }
    EXPECT_EQ(result.peak, static_cast<float>(peak));
    EXPECT_NEAR(result.rms, std::sqrt(sum / static_cast<double>(expected)), 1e-4);
}

TEST(R3DClip, readsAnyRunAcrossBlocksAndSegments) {
    const auto frames = noise(20'000);
    Clip clip(R3DClipWriter::clip(frames, 777, 7000));
    ASSERT_EQ(clip.files.size(), 3U);
    ASSERT_EQ(clip.reader->totalSampleFrames(), 20'000);
    expectFrames(clip, frames, 0, 20'000);
    for (const std::size_t start : {0U, 776U, 777U, 6999U, 7000U, 19'999U})
        expectFrames(clip, frames, start, 1024);
    std::mt19937 random(4);
    for (int i = 0; i < 300; ++i) expectFrames(clip, frames, random() % 20'000, random() % 6000 + 1);
    for (const std::int64_t outside : {std::int64_t{-1}, std::int64_t{20'000}, INT64_MAX, INT64_MIN})
        EXPECT_EQ(clip.read(outside, 10), MonoRead{});
    EXPECT_EQ(clip.read(5, 0), MonoRead{});
}

TEST(R3DClip, readsABlockThatIsLargerThanItsScratch) {
    const auto frames = noise(30'000);
    Clip clip(R3DClipWriter::clip(frames, 30'000, 30'000));
    expectFrames(clip, frames, 0, 30'000);
    expectFrames(clip, frames, 4095, 9001);
}

TEST(R3DClip, decodesTheWholeRangeOfASample) {
    const Frames frames{{-0x80'0000, 0x7F'FFFF}, {1, -1}, {0, 0}};
    Clip clip(R3DClipWriter::clip(frames, 10, 10));
    const auto result = clip.read(0, 3);
    EXPECT_EQ(result.peak, 1.0F);
    EXPECT_EQ(clip.buffer[0], -0x1p-24F);
    EXPECT_EQ(clip.buffer[1], 0.0F);
}

TEST(R3DClip, isNoClipOnlyWhereNoFileIs) {
    SimulatedClipMedia media;
    EXPECT_EQ(R3DAudioClipReader::create("/A_001.R3D", media), nullptr);
    for (const std::size_t size : {0U, 1U, 8192U, 8193U, 100'000U}) {
        media.files["/A_001.R3D"] = std::make_shared<Bytes>(Bytes(size));
        const auto reader = R3DAudioClipReader::create("/A_001.R3D", media);
        ASSERT_NE(reader, nullptr) << size;
        EXPECT_EQ(reader->totalSampleFrames(), 0);
        std::vector<float> buffer(16);
        EXPECT_EQ(reader->readMono(0, 16, buffer), MonoRead{});
    }
}

TEST(R3DClip, needsMoreThan8192BytesOfASegment) {
    // The second page is index and last page at once: all that a reader asks for is there but the size.
    auto small = R3DClipWriter::segment(Bytes(), {{1, 136}});
    const Bytes mark{'r', 'd', 'a', 1, 0, 0, 0, 1};
    std::ranges::copy(mark, small.begin() + 4096 + 20);
    small.resize(8192);
    EXPECT_EQ(Clip({small}).reader->totalSampleFrames(), 0);

    // A last page of 32 bytes is the shortest that is looked at.
    auto larger = R3DClipWriter::segment(Bytes(), {{1, 136}});
    larger.resize(8192 + 32);
    EXPECT_EQ(Clip({larger}).reader->totalSampleFrames(), 1);
    larger.resize(8192 + 31);
    EXPECT_EQ(Clip({larger}).reader->totalSampleFrames(), 0);
}

TEST(R3DClip, leavesOutSegmentsWithoutAnIndexAndThoseThatCannotBeOpened) {
    const auto frames = noise(3000);
    auto segments = R3DClipWriter::clip(frames, 500, 1000);
    segments[1] = Bytes(9000);
    Clip clip(segments);
    Frames rest(frames.begin(), frames.begin() + 1000);
    rest.insert(rest.end(), frames.begin() + 2000, frames.end());
    ASSERT_EQ(clip.reader->totalSampleFrames(), 2000);
    expectFrames(clip, rest, 900, 1100);

    // It exists, and yet it cannot be opened.
    SimulatedClipMedia media = {};
    Clip whole(R3DClipWriter::clip(frames, 500, 1000));
    whole.media.files.erase("/A_002.R3D");
    whole.media.sounds["/A_002.R3D"] = nullptr;
    whole.reader = R3DAudioClipReader::create("/A_001.R3D", whole.media);
    expectFrames(whole, rest, 900, 1100);
}

TEST(R3DClip, endsAReadWhereNothingComesAndGoesOnAfterABlockThatBreaksOff) {
    const auto frames = noise(300);
    // The second block's length lies: it has 100 frames, and says that it has 1000 more than the file.
    const auto first = R3DClipWriter::block(std::span(frames).first(100));
    Bytes blocks = first;
    const auto second = R3DClipWriter::block(std::span(frames).subspan(100, 100));
    blocks.insert(blocks.end(), second.begin(), second.end());
    const auto segment =
        R3DClipWriter::segment(blocks, {{1, 128 + 800}, {2, 128 + 80'000'000}, {1, 128 + 800}});
    Clip clip({segment});
    EXPECT_EQ(clip.reader->totalSampleFrames(), 100 + 10'000'000 + 100);
    const std::size_t behindSecond = (segment.size() - 8192 - 128) / 8;
    // From the second block all that the file has, then the third block.
    const auto result = clip.read(100, 100'000);
    EXPECT_EQ(result.framesRead, behindSecond + 100);
    for (std::size_t i = 0; i < 100; ++i)
        ASSERT_EQ(
            clip.buffer[behindSecond + i],
            (static_cast<float>(value(frames[i].left)) + static_cast<float>(value(frames[i].right))) * 0.5F);
    EXPECT_EQ(clip.read(5'000'000, 1000), MonoRead{});
    // The file is cut while it is open, in the middle of a frame.
    clip.files[0]->resize(4096 + 128 + 8 * 50 + 5);
    EXPECT_EQ(clip.read(0, 1000).framesRead, 50U);
    clip.files[0]->clear();
    EXPECT_EQ(clip.read(0, 1000), MonoRead{});
}

TEST(R3DClip, goesOnWithTheNextBlockWhereverABlockBreaksOff) {
    const auto frames = noise(10'000);
    auto blocks = R3DClipWriter::block(std::span(frames).first(100));
    const auto large = R3DClipWriter::block(frames);
    blocks.insert(blocks.end(), large.begin(), large.end());
    const auto segment = R3DClipWriter::segment(blocks, {{2, 128 + 80'000}, {1, 128 + 800}});
    // Around 4096 and 8192 frames, too, which is what one and two scratches hold.
    for (const std::size_t whole : {1U, 4095U, 4096U, 4097U, 8191U, 8192U, 8193U, 9999U})
        for (const std::size_t more : {0U, 7U}) {
            Clip clip({segment});
            clip.files[0]->resize(8192 + 128 + 8 * whole + more);
            Frames rest(frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(whole));
            rest.insert(rest.end(), frames.begin(), frames.begin() + 100);
            EXPECT_EQ(clip.read(0, 10'000).framesRead, std::min<std::size_t>(whole + 100, 10'000)) << whole;
            expectFrames(clip, rest, 0, std::min<std::size_t>(whole + 100, 10'000));
        }
    Clip clip({segment});
    clip.files[0]->resize(8192 + 128 + 7);
    EXPECT_EQ(clip.read(0, 10'000), MonoRead{}) << "no frame at all ends the read";
}

/// One file, of which a part comes late: reads end there, though the file goes on.
class LateMedia final : public ClipMedia {
  public:
    explicit LateMedia(Bytes bytes) : bytes_(std::make_shared<Bytes>(std::move(bytes))) {}

    std::pair<std::uint64_t, std::uint64_t> late{0, 0};

    bool exists(const std::string&) override { return true; }
    std::unique_ptr<AudioFile> openAudioFile(const std::string&) override { return nullptr; }
    std::unique_ptr<MediaFile> openFile(const std::string&) override {
        return std::make_unique<LateFile>(*this);
    }

  private:
    class LateFile final : public MediaFile {
      public:
        explicit LateFile(LateMedia& media) : media_(media), file_(media.bytes_) {}
        std::optional<std::uint64_t> size() override { return file_.size(); }
        std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) override {
            const auto [begin, end] = media_.late;
            const auto atHand = offset >= end ? bytes.size() : begin - std::min(offset, begin);
            return file_.read(offset, bytes.first(std::min(bytes.size(), atHand)));
        }

      private:
        LateMedia& media_;
        MemoryMediaFile file_;
    };

    std::shared_ptr<const Bytes> bytes_;
};

TEST(R3DClip, doesNotHearTheNextBlockInPlaceOfBytesThatAreLate) {
    auto blocks = R3DClipWriter::block(noise(500));
    const auto second = R3DClipWriter::block(noise(500));
    blocks.insert(blocks.end(), second.begin(), second.end());
    LateMedia media(R3DClipWriter::segment(blocks, {{1, 128 + 4000}, {3, 128 + 4000}}));
    const auto reader = R3DAudioClipReader::create("/A.R3D", media);
    ASSERT_EQ(reader->totalSampleFrames(), 1000);
    std::vector<float> buffer(1000);
    EXPECT_EQ(reader->readMono(0, 1000, buffer).framesRead, 1000U);
    media.late = {4096 + 128 + 8 * 300 + 3, 4096 + 128 + 4000};
    EXPECT_EQ(reader->readMono(0, 1000, buffer).framesRead, 300U);
    EXPECT_EQ(reader->readMono(400, 600, buffer).framesRead, 0U);
    EXPECT_EQ(reader->readMono(500, 500, buffer).framesRead, 500U);
}

TEST(R3DClip, takesBlocksThatOverlapAndPagesPastTheEnd) {
    const auto frames = noise(100);
    const auto blocks = R3DClipWriter::block(frames);
    std::vector<R3DClipWriter::Entry> entries(2000, {1, 128 + 800});
    entries[3] = {0xFFFF'FFFF, 0xFFFF'FFFF};
    Clip clip({R3DClipWriter::segment(blocks, entries)});
    // The index is read up to 8192 bytes: 1015 entries.
    EXPECT_EQ(clip.reader->totalSampleFrames(), 1014 * 100 + 536'870'895);
    EXPECT_EQ(clip.read(250, 100).framesRead, 50U) << "a block past the end ends the read";
    EXPECT_EQ(clip.read(300 + 536'870'895, 250).framesRead, 250U);
}

}  // namespace
}  // namespace orbinex
