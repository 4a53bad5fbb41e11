#pragma once

#include "engine/surface.h"
#include "fuzz_reader.h"
#include "platform/picture_refusal.h"
#include "platform/qt_picture_decoder.h"

#include <QGuiApplication>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

namespace lumiran::fuzz {

// Metafiles are drawn with Qt's painter and fonts, which need a graphics
// application; the offscreen platform needs no display.
inline void startGraphicsApplication() {
    static int argc = 1;
    static char name[] = "fuzzer";
    static char* argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    static const auto application = std::make_unique<QGuiApplication>(argc, argv);
}

// Feeds one input to the platform's decoder. A refusal is the right answer
// to a bad file; a crash, a sanitizer report, any other exception, a
// time-out or running past the memory limit is a finding.
inline int fuzzDecoder(const std::uint8_t* data, std::size_t size, const std::string& extension,
                       const LoadLimits& limits) {
    try {
        DiscardingProgress progress;
        const Surface picture =
            decodePicture(std::span<const std::uint8_t>(data, size), extension, limits, &progress);
        volatile Pixel sink = 0;
        for (const Pixel p : picture.pixels())
            sink = sink ^ p;
    } catch (const PictureRefusal&) {
    } catch (const ImageLoadError&) {
    } catch (const std::bad_alloc&) {
        // Qt refuses an image above its allocation limit this way.
    }
    return 0;
}

} // namespace lumiran::fuzz
