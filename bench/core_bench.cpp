// In-process figures on the demo fullflash: open and list, decode every picture, save every
// picture as BMP bytes. The whole-process ratios against cat and cp live in process_ratios.sh.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <utility>
#include <vector>

#include "base/file_io.h"
#include "base/hex_text.h"
#include "support/scripted_interface.h"
#include "app/workspace.h"
#include "codec/bmp_file.h"
#include "demo/demo_flash.h"

namespace {

using namespace korvatek;

const std::string& demoFlashPath() {
    static const std::string path = [] {
        const auto p = std::filesystem::temp_directory_path() / "korvatek-bench-demo.bin";
        const Bytes image = firmware::makeDemoFlash();
        if (!app::writeFile(p.string(), image).ok()) std::fprintf(stderr, "cannot write %s\n", p.c_str());
        return p.string();
    }();
    return path;
}

struct Opened {
    app::ScriptedInterface ui;
    app::Workspace ws{ui};
    Opened() {
        ws.PathGiven = true;
        ws.CommandLinePath = demoFlashPath();
        ws.mnu_FileOpen();
    }
};

void BM_OpenAndList(benchmark::State& state) {
    demoFlashPath();  // made once, outside the timing
    for (auto _ : state) {
        Opened o;
        benchmark::DoNotOptimize(o.ws.ListView1.data());
    }
}
BENCHMARK(BM_OpenAndList)->Unit(benchmark::kMillisecond);

void BM_DecodeEveryPicture(benchmark::State& state) {
    Opened o;
    std::uint64_t bytes = 0;
    for (auto _ : state) {
        for (int n = 0; n < static_cast<int>(o.ws.ListView1.size()); ++n) {
            o.ws.selectPicture(n);
            o.ws.ListView1_Click();
            bytes += o.ws.picture.dataLength.size();
        }
    }
    benchmark::DoNotOptimize(bytes);
}
BENCHMARK(BM_DecodeEveryPicture)->Unit(benchmark::kMillisecond);

// The baseline of decoding every picture: reading each picture's data once (a byte sum over
// the same spans the decoder consumes).
void BM_ReadPictureDataOnce(benchmark::State& state) {
    Opened o;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> spans;
    for (int n = 0; n < static_cast<int>(o.ws.ListView1.size()); ++n) {
        o.ws.selectPicture(n);
        o.ws.ListView1_Click();
        const auto start = static_cast<std::uint64_t>(o.ws.ListView1[static_cast<std::size_t>(n)].dataOffset());
        spans.emplace_back(start, static_cast<std::uint64_t>(app::valHEX(o.ws.picture.dataLength)));
    }
    const ByteView image = o.ws.firmware->bytes();
    for (auto _ : state) {
        std::uint64_t sum = 0;
        for (const auto& [start, length] : spans)
            for (std::uint64_t i = start; i < start + length && i < image.size(); ++i) sum += image[i];
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BM_ReadPictureDataOnce)->Unit(benchmark::kMillisecond);

void BM_EncodeFullScreenBmp(benchmark::State& state) {
    Opened o;
    o.ws.selectPicture(0);
    o.ws.ListView1_Click();
    for (auto _ : state) {
        auto bmp = codec::encodeBmp(o.ws.canvas, 24);
        benchmark::DoNotOptimize(bmp.value().data());
    }
}
BENCHMARK(BM_EncodeFullScreenBmp)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
