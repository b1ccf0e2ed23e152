#include "ReelCore/Planning/StorageCalculator.h"

#include <array>

namespace ReelCore {

using Resolution = StorageCalculator::Resolution;

std::span<const Resolution> Resolution::all() {
    static const std::array resolutions{
        Resolution{"hd", "HD 1920×1080", 1920, 1080},
        Resolution{"uhd", "UHD 3840×2160", 3840, 2160},
        Resolution{"4kdci", "4K DCI 4096×2160", 4096, 2160},
        Resolution{"8k", "8K 7680×4320", 7680, 4320},
    };
    return resolutions;
}

const Resolution Resolution::hd = all()[0];
const Resolution Resolution::uhd = all()[1];
const Resolution Resolution::dci4k = all()[2];
const Resolution Resolution::uhd8k = all()[3];

std::span<const std::int64_t> StorageCalculator::driveSizesTB() {
    static constexpr std::array<std::int64_t, 9> sizes{1, 2, 4, 5, 8, 12, 16, 20, 24};
    return sizes;
}

std::span<const StorageCalculator::Codec> StorageCalculator::codecs() {
    using Scaled = RateModel::Scaled;
    using Tiered = RateModel::Tiered;
    using Custom = RateModel::Custom;
    static const std::array table{
        Codec{"prores_proxy", "ProRes 422 Proxy", {Scaled{36}}, true, ""},
        Codec{"prores_lt", "ProRes 422 LT", {Scaled{82}}, true, ""},
        Codec{"prores_422", "ProRes 422", {Scaled{117}}, true, ""},
        Codec{"prores_hq", "ProRes 422 HQ", {Scaled{176}}, true, ""},
        Codec{"prores_4444", "ProRes 4444", {Scaled{264}}, true, ""},
        Codec{"dnxhr_lb", "DNxHR LB", {Scaled{36}}, true, "approx"},
        Codec{"dnxhr_sq", "DNxHR SQ", {Scaled{115}}, true, "approx"},
        Codec{"dnxhr_hq", "DNxHR HQ", {Scaled{175}}, true, "approx"},
        Codec{"xavci_4k",
              "XAVC-I 4K (FX9/FX6)",
              {Tiered{300, 600}},
              false,
              "Class 300; 600 Mbps at 50/59.94p"},
        Codec{"xavci_hd", "XAVC-I HD", {Tiered{111, 222}}, false, ""},
        Codec{"xavcl_4k", "XAVC-L 4K", {Tiered{100, 150}}, false, ""},
        Codec{"custom",
              "Custom bitrate…",
              {Custom{100}},
              false,
              "enter the camera-spec Mbps (H.264/HEVC/RAW)"},
    };
    return table;
}

std::span<const StorageCalculator::CardType> StorageCalculator::cardTypes() {
    static const std::array table{
        CardType{"cfexpress_a", "CFexpress Type A", {80, 160, 320, 640, 960}},
        CardType{"cfexpress_b", "CFexpress Type B", {128, 256, 512, 1024, 2048}},
        CardType{"xqd", "XQD", {64, 120, 160, 240, 512}},
        CardType{"sxs", "SxS", {32, 64, 128, 256}},
        CardType{"axs", "AXS", {256, 512, 1024}},
        CardType{"sd", "SD (UHS-II)", {64, 128, 256, 512, 1024}},
        CardType{"microsd", "microSD", {64, 128, 256, 512, 1024}},
    };
    return table;
}

}  // namespace ReelCore
