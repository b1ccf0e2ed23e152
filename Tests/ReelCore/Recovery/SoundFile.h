#pragma once

#include "ReelCore/Platform/URL.h"
#include "Support/Tool.h"

#include <string>
#include <vector>

/// Half a second of 48 kHz, 24 bit, a tone in each of two channels, as ffmpeg writes it; the
/// extension tells the container, `options` more about it.
inline void makeSound(const ReelCore::URL& url, const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments{"-nostdin", "-v", "error", "-f", "lavfi", "-i"};
    arguments.emplace_back("aevalsrc=sin(2000*2*PI*t)/4|sin(3000*2*PI*t)/4:s=48000:d=0.5");
    arguments.insert(arguments.end(), {"-c:a", "pcm_s24le"});
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back("file:" + url.native());
    TestSupport::outputOf("ffmpeg", arguments);
}
