// How long the editor keeps a person waiting on a large picture: a
// per-pixel effect run through the frame as OK runs it, timed from the
// call to the progress window showing, to the call returning to the event
// loop, to the result standing in the document's view, and to the view's
// first paint of it having ended.
//
//   QT_QPA_PLATFORM=offscreen lumiran_editor_timing [side] [runs]
//   xvfb-run -s "-screen 0 1920x1080x24" lumiran_editor_timing [side] [runs]
#include "catalogue/effect_dispatch.h"
#include "effects/colour/class_color_op.h"
#include "imagefiles/bitmap_writer.h"
#include "platform/qt_picture_decoder.h"
#include "shell/key_value_store.h"
#include "shell/ui/frm_document.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/frm_progress.h"
#include "shell/ui/picture_view.h"
#include "shell/ui/run_controller.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QThreadPool>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <sys/resource.h>
#include <vector>

namespace {

using namespace lumiran;
using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Monotone on the worker, in the shape the dialog's OK gives it.
EffectBody monotone() {
    return runInPlace<Class_ColorOp>([](Class_ColorOp& effect, const ProcessRect& r) {
        effect.Gray_Effect(0, r.left, r.top, r.right, r.bottom);
    });
}

Surface plasmaLike(int side) {
    Surface s = Surface::uninitialised(side, side);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            s.at(x, y) = makePixel((x >> 4) & 255, (y >> 4) & 255, ((x + y) >> 5) & 255);
    }
    return s;
}

// Processor time of the whole process, all threads: it depends less on
// the machine's other load than the wall times do.
double processorMs() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval& t) { return t.tv_sec * 1e3 + t.tv_usec / 1e3; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

// The end of the watched widget's paints: the filter runs the paint
// itself and notes when it returned.
class PaintClock : public QObject {
  public:
    explicit PaintClock(QWidget& watched) : watched_(watched) { watched.installEventFilter(this); }
    std::optional<Clock::time_point> painted;

  protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (object != &watched_ || event->type() != QEvent::Paint) return false;
        watched_.removeEventFilter(this);
        QCoreApplication::sendEvent(&watched_, event);
        watched_.installEventFilter(this);
        painted = Clock::now();
        return true;
    }

  private:
    QWidget& watched_;
};

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const int side = argc > 1 ? std::max(16, std::atoi(argv[1])) : 6000;
    const int runs = argc > 2 ? std::max(1, std::atoi(argv[2])) : 5;
    QTemporaryDir dir;
    const QString path = dir.filePath("large.bmp");
    saveBmp24(plasmaLike(side), path.toStdString());

    MemoryStore store;
    QtPictureDecoder decoder;
    FrmMain frame(store, decoder);
    frame.show();
    FrmDocument* document = frame.openFile(path);
    if (document == nullptr) {
        std::fprintf(stderr, "the picture did not open\n");
        return 1;
    }
    QApplication::processEvents();

    PaintClock paints(document->pictureView());
    std::vector<double> shown, returned, ended, result, painted, processor;
    for (int i = 0; i < runs; ++i) {
        // The editor readies a run's memory in the background after a load
        // and after a run; a person takes longer than that to pick an effect.
        QThreadPool::globalInstance()->waitForDone();
        double windowAt = -1, endAt = -1;
        const auto start = Clock::now();
        const double processorBefore = processorMs();
        const QMetaObject::Connection watch =
            QObject::connect(&frame.runs(), &RunController::runningChanged, [&](bool running) {
                frm_Progress* window = frame.runs().progressWindow();
                if (running && window != nullptr && window->isVisible()) windowAt = msSince(start);
            });
        // The view takes the result in the frame's own handler of the end,
        // connected before this one; its paint comes after.
        const QMetaObject::Connection end =
            QObject::connect(&frame.runs(), &RunController::finished, [&] {
                endAt = msSince(start);
                paints.painted.reset();
            });
        if (!frame.runEffect(*document, monotone())) return 1;
        const double back = msSince(start);
        frame.runs().waitForEnd();
        QApplication::processEvents();
        const double done = msSince(start);
        // Then the window system asks for the paint.
        QElapsedTimer patience;
        patience.start();
        while (!paints.painted && patience.elapsed() < 2000)
            QApplication::processEvents(QEventLoop::AllEvents, 10);
        painted.push_back(
            paints.painted
                ? std::chrono::duration<double, std::milli>(*paints.painted - start).count()
                : -1);
        processor.push_back(processorMs() - processorBefore);
        QObject::disconnect(watch);
        QObject::disconnect(end);
        ended.push_back(endAt);
        shown.push_back(windowAt);
        returned.push_back(back);
        result.push_back(done);
    }
    // The first run on a picture is the one that pays for fresh memory.
    std::printf("%dx%d Monotone through the frame, ms: first run, median of %d runs\n", side, side,
                runs);
    const auto row = [](const char* what, const std::vector<double>& v) {
        std::printf("  %-24s %8.1f %8.1f\n", what, v.front(), median(v));
    };
    row("progress window shown", shown);
    row("back in the event loop", returned);
    row("run ended, result made", ended);
    row("result in the view", result);
    row("view painted", painted);
    row("processor time", processor);
    return 0;
}
