#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "cli/cli_commands.h"
#include "effects/colour/class_color_op.h"
#include "imagefiles/bitmap_writer.h"
#include "imagefiles/bmp_reader.h"
#include "imagefiles/file_io.h"
#include "imagefiles/load_dispatch.h"
#include "platform/qt_picture_decoder.h"
#include "test_support.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace lumiran {
namespace {

namespace fs = std::filesystem;

struct CliTest : ::testing::Test {
    fs::path dir;
    std::ostringstream out, err;
    QtPictureDecoder decoder;

    void SetUp() override {
        dir = fs::temp_directory_path() /
              (std::string("lumiran-cli-") +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    int run(std::vector<std::string> args) {
        out.str("");
        err.str("");
        return cli::runCli(args, out, err, decoder);
    }
    std::string path(const char* name) const { return (dir / name).string(); }
    std::string writeInput(const char* name, const Surface& s) const {
        saveBmp24(s, dir / name);
        return path(name);
    }
    Surface read(const char* name) {
        return LoadImageFile(dir / name, &decoder, nullptr).value_or(Surface());
    }
};

// What Gray_Effect gives on a whole picture, computed without the CLI.
Surface expectedGray(const Surface& source, std::uint8_t kind, std::uint8_t calc = 0) {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context(cancel, random);
    context.flags.calculationFlag = calc;
    Class_ColorOp effect(context);
    effect.ImageGetDiBits(source);
    effect.Gray_Effect(kind, 0, 0, static_cast<std::int16_t>(source.width()),
                       static_cast<std::int16_t>(source.height()));
    Surface result;
    effect.ImageSetDiBits(result);
    return result;
}

TEST_F(CliTest, EndToEndOnTheBundledSample) {
    const std::string output = path("out.bmp");
    const std::string command =
        std::string(LUMIRAN_CLI_PATH) +
        " apply --effect Monotone --c 11 --calc 1 " LUMIRAN_SAMPLE_PATH " -o " + output;
    ASSERT_EQ(std::system(command.c_str()), 0);
    const Surface sample = readBmp(readWholeFile(LUMIRAN_SAMPLE_PATH, 1 << 26));
    EXPECT_TRUE(read("out.bmp").sameColours(expectedGray(sample, 11, 1)));
}

TEST_F(CliTest, KeyAndCaptionNameTheSameEffectAndDefaultsApply) {
    const Surface picture = testing::makeVariedPicture(9, 7);
    const std::string input = writeInput("in.bmp", picture);
    ASSERT_EQ(run({"apply", "--effect", "ﾓﾉﾄｰﾝ", input, "-o", path("a.bmp")}), 0) << err.str();
    ASSERT_EQ(run({"apply", "--effect", "monotone", input, "-o", path("b.bmp")}), 0);
    EXPECT_TRUE(read("a.bmp").sameColours(expectedGray(picture, 0)));
    EXPECT_TRUE(read("b.bmp").sameColours(read("a.bmp")));
}

TEST_F(CliTest, ARectangleConfinesTheEffect) {
    const Surface picture = testing::makeVariedPicture(10, 10);
    const std::string input = writeInput("in.bmp", picture);
    ASSERT_EQ(run({"apply", "--effect", "Monotone", "--c", "1", "--rect", "8,8,2,2", input, "-o",
                   path("out.bmp")}),
              0);
    const Surface result = read("out.bmp");
    EXPECT_EQ(result.at(0, 0) & 0xFFFFFF, picture.at(0, 0) & 0xFFFFFF);
    const int red = redOf(picture.at(5, 5));
    EXPECT_EQ(result.at(5, 5) & 0xFFFFFF, makePixel(red, red, red));
}

TEST_F(CliTest, BatchWritesOneFilePerInput) {
    const std::string a = writeInput("a.bmp", testing::makeVariedPicture(3, 3));
    const std::string b = writeInput("b.bmp", testing::makeVariedPicture(4, 2));
    fs::create_directories(dir / "out");
    ASSERT_EQ(run({"apply", "--effect", "Monotone", a, b, "--out-dir", path("out")}), 0);
    EXPECT_TRUE(fs::exists(dir / "out" / "a.bmp"));
    EXPECT_EQ(read("out/b.bmp").width(), 4);
}

TEST_F(CliTest, UsageErrorsExitTwoWithOneLineAndWriteNothing) {
    const std::string input = writeInput("in.bmp", testing::makeVariedPicture(3, 3));
    const std::string output = path("out.bmp");
    const std::vector<std::vector<std::string>> cases = {
        {},
        {"frobnicate"},
        {"apply", "--effect", "No Such Effect", input, "-o", output},
        {"apply", "--effect", "Monotone", "--c", "16", input, "-o", output},
        {"apply", "--effect", "Monotone", "--s1", "3", input, "-o", output},
        {"apply", "--effect", "Monotone", "--calc", "11", input, "-o", output},
        {"apply", "--effect", "Monotone", "--rect", "1,2,3", input, "-o", output},
        {"apply", "--effect", "Monotone", input},
        {"apply", "--effect", "Monotone", path("missing.bmp"), "-o", output},
        {"apply", "--effect", "Monotone", input, "-o", path("no/such/dir/out.bmp")},
        {"convert", input, "-o", output, "--bits", "4"},
        {"convert", path("."), "-o", output},
    };
    for (const auto& args : cases) {
        EXPECT_EQ(run(args), cli::ExitUsage) << (args.empty() ? "" : args[0]) << " " << err.str();
        const std::string message = err.str();
        EXPECT_FALSE(message.empty());
        EXPECT_EQ(message.find('\n'), message.size() - 1) << message;
        EXPECT_FALSE(fs::exists(output));
    }
}

TEST_F(CliTest, RefusalsNameWhatIsMissingOrAllowed) {
    const std::string input = writeInput("in.bmp", testing::makeVariedPicture(3, 3));
    run({"apply", "--effect", "Monotone", "--c", "20", input, "-o", path("o.bmp")});
    EXPECT_NE(err.str().find("0..15"), std::string::npos) << err.str();
    // Any effect whose class operation is not built yet is refused by name.
    for (const EffectEntry& entry : effectCatalogue()) {
        if (planEffect(entry.dialog, entry.code, defaultControlValues(entry)).status !=
            EffectPlan::Status::NotAvailable) {
            continue;
        }
        EXPECT_EQ(run({"apply", "--effect", std::string(entry.key), input, "-o", path("o.bmp")}),
                  cli::ExitUsage);
        EXPECT_NE(err.str().find("not available"), std::string::npos) << err.str();
        EXPECT_FALSE(fs::exists(dir / "o.bmp"));
        break;
    }
}

TEST_F(CliTest, ConvertWritesEachDepth) {
    Surface few(6, 4, makePixel(0, 0, 0));
    few.at(1, 1) = makePixel(255, 255, 255);
    const std::string input = writeInput("few.bmp", few);
    for (const char* bits : {"24", "8", "1"}) {
        ASSERT_EQ(run({"convert", input, "-o", path("out.bmp"), "--bits", bits}), 0) << err.str();
        EXPECT_TRUE(read("out.bmp").sameColours(few)) << bits;
    }
}

TEST_F(CliTest, AnEightBitSaveWithTooManyColoursFailsAndWritesNothing) {
    const std::string input = writeInput("many.bmp", testing::makeVariedPicture(40, 40));
    EXPECT_EQ(run({"convert", input, "-o", path("eight.bmp"), "--bits", "8"}), cli::ExitFailed);
    EXPECT_NE(err.str().find("保存に失敗しました。"), std::string::npos) << err.str();
    EXPECT_FALSE(fs::exists(dir / "eight.bmp"));
}

TEST_F(CliTest, OwnReadersAreReachedByExtension) {
    // A 2x1 P6 file; the reader starts one byte early, so check only that it loads.
    std::ofstream(dir / "in.ppm", std::ios::binary) << "P6\n2 1\n255\n" << std::string(6, '\x40');
    ASSERT_EQ(run({"convert", path("in.ppm"), "-o", path("out.bmp")}), 0) << err.str();
    EXPECT_EQ(read("out.bmp").width(), 2);
    std::ofstream(dir / "bad.tga", std::ios::binary) << std::string(30, '\x03');
    EXPECT_EQ(run({"convert", path("bad.tga"), "-o", path("t.bmp")}), cli::ExitUsage);
    EXPECT_NE(err.str().find("ｴﾗｰ"), std::string::npos) << err.str();
    EXPECT_EQ(run({"convert", path("in.xyz"), "-o", path("x.bmp")}), cli::ExitUsage);
    // A bitmap cut in half is refused by name and nothing is written.
    auto bytes = encodeBmp24(testing::makeVariedPicture(8, 8));
    bytes.resize(bytes.size() / 2);
    std::ofstream(dir / "cut.bmp", std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    EXPECT_EQ(run({"convert", path("cut.bmp"), "-o", path("o.bmp")}), cli::ExitUsage);
    EXPECT_NE(err.str().find("cut.bmp"), std::string::npos);
    EXPECT_FALSE(fs::exists(dir / "o.bmp"));
}

// An effect whose case is not registered yet, if there is one left.
const EffectEntry* unavailableEffect() {
    for (const EffectEntry& e : effectCatalogue()) {
        if (planEffect(e.dialog, e.code, defaultControlValues(e)).status !=
            EffectPlan::Status::Ready) {
            return &e;
        }
    }
    return nullptr;
}

std::vector<std::string> splitBlocks(const std::string& text) {
    std::vector<std::string> blocks;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find("\n\n", start)) != std::string::npos; start = end + 2) {
        blocks.push_back(text.substr(start, end + 1 - start));
    }
    blocks.push_back(text.substr(start));
    return blocks;
}

TEST_F(CliTest, ListPrintsOneBlockPerEffect) {
    ASSERT_EQ(run({"list"}), 0) << err.str();
    const auto blocks = splitBlocks(out.str());
    ASSERT_EQ(blocks.size(), 262u);
    EXPECT_TRUE(blocks[0].starts_with("Monotone\n")) << blocks[0];
    EXPECT_NE(blocks[0].find("key:     ﾓﾉﾄｰﾝ\n"), std::string::npos) << blocks[0];
    EXPECT_NE(blocks[0].find("frm_Monotone, code 0"), std::string::npos);
    EXPECT_NE(blocks[0].find("status:  available\n"), std::string::npos);
    EXPECT_NE(blocks[0].find("list C:  ﾓﾉﾄｰﾝ･ﾀｲﾌﾟ: RGB:RGB | RGB:赤"), std::string::npos);

    const auto block = [&](std::string_view heading) {
        const auto it = std::ranges::find_if(blocks, [&](const std::string& b) {
            return b.starts_with(std::string(heading) + "\n");
        });
        return it == blocks.end() ? std::string() : *it;
    };
    const std::string range = block("Shade Range Adjust");
    EXPECT_NE(range.find("slider 1: 最小値 0..255, default 64\n"), std::string::npos) << range;
    EXPECT_NE(range.find("slider 2: 最大値 0..255, default 192\n"), std::string::npos) << range;
    EXPECT_FALSE(block("範囲濃度切り替え").empty()); // no caption: headed by its key

    if (const EffectEntry* missing = unavailableEffect()) {
        const std::string text = block(missing->caption.empty() ? missing->key : missing->caption);
        EXPECT_NE(text.find("status:  not available yet\n"), std::string::npos) << text;
    }
}

TEST_F(CliTest, ListAsJsonIsAnArrayOfEveryEffect) {
    ASSERT_EQ(run({"list", "--json"}), 0) << err.str();
    QJsonParseError error;
    const QJsonDocument document =
        QJsonDocument::fromJson(QByteArray::fromStdString(out.str()), &error);
    ASSERT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    const QJsonArray effects = document.array();
    ASSERT_EQ(effects.size(), 262);

    const QJsonObject monotone = effects[0].toObject();
    EXPECT_EQ(monotone["caption"].toString(), "Monotone");
    EXPECT_EQ(monotone["key"].toString(), QString::fromUtf8("ﾓﾉﾄｰﾝ"));
    EXPECT_EQ(monotone["availability"].toString(), "available");
    const QJsonObject list = monotone["lists"].toArray()[0].toObject();
    EXPECT_EQ(list["letter"].toString(), "C");
    EXPECT_EQ(list["rows"].toArray().size(), 16);

    if (const EffectEntry* missing = unavailableEffect()) {
        const auto at = static_cast<int>(missing - effectCatalogue().data());
        EXPECT_EQ(effects[at].toObject()["availability"].toString(), "not available yet");
        EXPECT_FALSE(effects[at].toObject()["available"].toBool());
    }
}

TEST_F(CliTest, ListTakesNothingButJson) {
    for (const auto& args : std::vector<std::vector<std::string>>{
             {"list", "in.bmp"}, {"list", "--xml"}, {"list", "--json", "-o", "x"}}) {
        EXPECT_EQ(run(args), cli::ExitUsage) << args[1];
        EXPECT_TRUE(out.str().empty());
        EXPECT_NE(err.str().find("list"), std::string::npos) << err.str();
    }
    ASSERT_EQ(run({"--help"}), 0);
    EXPECT_NE(out.str().find("lumiran-cli list [--json]"), std::string::npos);
}

} // namespace
} // namespace lumiran
