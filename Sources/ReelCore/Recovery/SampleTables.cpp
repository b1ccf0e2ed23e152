#include "ReelCore/Recovery/SampleTables.h"

#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Recovery/BigEndian.h"

#include <iterator>
#include <set>
#include <string>
#include <utility>

namespace ReelCore {

namespace {

using Bytes = MP4Box::Bytes;

/// A table's payload: version and flags, then what is put.
class Table {
public:
    Table() { put(0); }

    Table& put(std::int64_t number) {
        appendBigEndian(bytes_, exact32(number));
        return *this;
    }

    Table& putOffset(std::int64_t offset) {
        if (offset < 0) fatal("a negative offset");
        appendBigEndian(bytes_, static_cast<std::uint64_t>(offset));
        return *this;
    }

    Bytes take() { return std::move(bytes_); }

private:
    Bytes bytes_;
};

struct Tables {
    Table timeToSample;
    Table sampleToChunk;
    Table sampleSize;
    Table chunkOffset;
};

Tables videoTables(const TrackInfo& info, const MdatIndex& index, std::int64_t mdatFileOffset) {
    const std::int64_t count = std::ssize(index.videoSamples);
    Tables tables;
    tables.timeToSample.put(1).put(count).put(info.sttsDelta);
    tables.sampleToChunk.put(1).put(1).put(1).put(1);
    tables.sampleSize.put(0).put(count);
    tables.chunkOffset.put(count);
    for (const auto& [offset, size] : index.videoSamples) {
        tables.sampleSize.put(size);
        tables.chunkOffset.putOffset(exactSum(mdatFileOffset, offset));
    }
    return tables;
}

/// Which chunk is the first to hold how many samples.
struct Run {
    std::int64_t firstChunk;
    std::int64_t samplesPerChunk;
};

std::vector<Run> runsOf(const MdatIndex& index, std::int64_t bytesPerFrame) {
    std::vector<Run> runs;
    std::int64_t chunk = 0;
    for (const MdatIndex::AudioChunk& one : index.audioChunks) {
        ++chunk;
        const std::int64_t samples = one.bytes / bytesPerFrame;
        if (runs.empty() || runs.back().samplesPerChunk != samples)
            runs.push_back({chunk, samples});
    }
    return runs;
}

Tables audioTables(const TrackInfo& info, const MdatIndex& index, std::int64_t mdatFileOffset) {
    std::int64_t samples = 0;
    Tables tables;
    tables.chunkOffset.put(std::ssize(index.audioChunks));
    for (const auto& [offset, bytes] : index.audioChunks) {
        samples = exactSum(samples, bytes / info.bytesPerFrame);
        tables.chunkOffset.putOffset(exactSum(mdatFileOffset, offset));
    }
    const std::vector<Run> runs = runsOf(index, info.bytesPerFrame);
    tables.sampleToChunk.put(std::ssize(runs));
    for (const auto& [firstChunk, samplesPerChunk] : runs) {
        tables.sampleToChunk.put(firstChunk).put(samplesPerChunk).put(1);
    }
    tables.timeToSample.put(1).put(samples).put(info.sttsDelta);
    tables.sampleSize.put(info.bytesPerFrame).put(samples);
    return tables;
}

}  // namespace

void rebuildSampleTables(MP4Box& stbl, const TrackInfo& info, const MdatIndex& index,
                         std::int64_t mdatFileOffset) {
    std::erase_if(stbl.children, [](const auto& child) { return child->type != "stsd"; });
    Tables tables = info.kind == "vide" ? videoTables(info, index, mdatFileOffset)
                                        : audioTables(info, index, mdatFileOffset);
    const auto append = [&](const char* type, Table& table) {
        stbl.children.push_back(std::make_shared<MP4Box>(type, table.take(), MP4Box::Children()));
    };
    append("stts", tables.timeToSample);
    append("stsc", tables.sampleToChunk);
    append("stsz", tables.sampleSize);
    append("co64", tables.chunkOffset);
}

}  // namespace ReelCore
