#include "ToneMeter.h"

#include "Support/FolderTree.h"

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <stdexcept>

namespace ReelCore {

namespace {

std::vector<double> samplesIn(const URL& file) {
    const std::string bytes = TestSupport::readFile(file);
    const std::size_t data = bytes.find("data");
    constexpr std::size_t header = 8;
    if (data == bytes.npos || bytes.size() < data + header + 2) {
        throw std::runtime_error("no sound in " + file.native());
    }
    std::vector<double> samples;
    for (std::size_t at = data + header; at + 1 < bytes.size(); at += sizeof(std::int16_t)) {
        std::int16_t sample = 0;
        std::memcpy(&sample, &bytes[at], sizeof sample);
        samples.push_back(sample / 32768.0);
    }
    return samples;
}

/// Of a sine wave of this frequency in the sound: 1 is the loudest that there can be.
double amplitude(const std::vector<double>& samples, int frequency) {
    std::complex<double> sum = 0;
    const double step = 2 * std::numbers::pi * frequency / 16000.0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        sum += std::polar(samples[i], -step * static_cast<double>(i));
    }
    return 2 * std::abs(sum) / static_cast<double>(samples.size());
}

}  // namespace

std::vector<int> tonesIn(const URL& file) {
    constexpr double clearly = 0.02;
    const std::vector<double> samples = samplesIn(file);
    std::vector<int> tones;
    for (int frequency = 2000; frequency <= 7000; frequency += 1000) {
        if (amplitude(samples, frequency) > clearly) tones.push_back(frequency);
    }
    return tones;
}

}  // namespace ReelCore
