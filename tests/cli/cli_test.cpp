#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "catalogue/name_folding.h"
#include "cli/cli_commands.h"
#include "effects/colour/class_color_op.h"
#include "imagefiles/bitmap_writer.h"
#include "imagefiles/bmp_reader.h"
#include "imagefiles/file_io.h"
#include "imagefiles/load_dispatch.h"
#include "platform/qt_picture_decoder.h"
#include "shell/string_table.h"
#include "test_support.h"

#include <QBuffer>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <atomic>
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
        dir = lumiran::testing::testFolder("lumiran-cli-");
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    int run(std::vector<std::string> args, const std::atomic<int>* interrupted = nullptr) {
        out.str("");
        err.str("");
        return cli::runCli(args, out, err, decoder, interrupted);
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

TEST_F(CliTest, ABatchGivesEveryInputItsOutcomeNamedAndExitsWithTheWorst) {
    const std::string a = writeInput("a.bmp", testing::makeVariedPicture(3, 3));
    const std::string b = writeInput("b.bmp", testing::makeVariedPicture(3, 3));
    const std::string c = writeInput("c.bmp", testing::makeVariedPicture(3, 3));
    std::ofstream(dir / "bad.pcx") << "not a pcx";
    fs::create_directories(dir / "out");
    fs::create_symlink("/dev/full", dir / "out" / "b.bmp"); // a full disk for this one output
    const std::vector<std::string> args{"apply", "--effect",  "Monotone", a, path("bad.pcx"), b,
                                        c,       "--out-dir", path("out")};
    ASSERT_EQ(run(args), 2);
    EXPECT_TRUE(fs::exists(dir / "out" / "a.bmp"));
    EXPECT_TRUE(fs::exists(dir / "out" / "c.bmp"));
    std::vector<std::string> lines;
    std::istringstream messages(err.str());
    for (std::string line; std::getline(messages, line);)
        lines.push_back(line);
    ASSERT_EQ(lines.size(), 2u) << err.str();
    EXPECT_NE(lines[0].find("bad.pcx"), std::string::npos) << lines[0];
    EXPECT_NE(lines[1].find(b), std::string::npos) << lines[1];

    // On a terminal each input also gets a progress line first.
    err.str("");
    ASSERT_EQ(cli::runCli(args, out, err, decoder, nullptr, true), 2);
    const std::string shown = err.str();
    EXPECT_EQ(shown.rfind("[1/4] a.bmp\n[2/4] bad.pcx\n", 0), 0u) << shown;
    EXPECT_NE(shown.find("[4/4] c.bmp\n"), std::string::npos) << shown;
}

TEST_F(CliTest, ADamagedPngInsideAnIconGivesOneLineOnly) {
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    QImage picture(16, 16, QImage::Format_ARGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(&buffer, "PNG"));
    const qsizetype idat = png.indexOf("IDAT");
    ASSERT_GT(idat, 0);
    png[idat + 6] = static_cast<char>(png[idat + 6] ^ 0x5A); // inside the compressed data
    QByteArray ico("\0\0\1\0\1\0", 6);
    const std::uint32_t size = static_cast<std::uint32_t>(png.size());
    const char entry[16] = {
        16, 16, 0,  0, 1, 0, 32, 0, static_cast<char>(size & 0xFF), static_cast<char>(size >> 8),
        0,  0,  22, 0, 0, 0};
    ico.append(entry, 16);
    ico.append(png);
    std::ofstream(dir / "broken.ico", std::ios::binary).write(ico.data(), ico.size());
    const std::string command = std::string(LUMIRAN_CLI_PATH) + " convert " + path("broken.ico") +
                                " -o " + path("out.bmp") + " 2>" + path("err.txt");
    EXPECT_NE(std::system(command.c_str()), 0);
    std::ifstream in(dir / "err.txt");
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].find("libpng"), std::string::npos) << lines[0];
    EXPECT_EQ(lines[0].rfind("lumiran-cli: ", 0), 0u) << lines[0];
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

TEST_F(CliTest, MaxPixelsBoundsWhatIsRead) {
    const std::string input = writeInput("in.bmp", testing::makeVariedPicture(40, 30));
    const std::string output = path("out.bmp");
    EXPECT_EQ(run({"convert", input, "-o", output, "--max-pixels", "40x30"}), cli::ExitOk);
    fs::remove(output);
    EXPECT_EQ(run({"convert", input, "-o", output, "--max-pixels", "1199"}), cli::ExitUsage);
    EXPECT_NE(err.str().find("40x30 is 1200 pixels, above the limit of 1199 pixels"),
              std::string::npos)
        << err.str();
    EXPECT_EQ(run({"convert", input, "-o", output, "--max-pixels", "big"}), cli::ExitUsage);
    EXPECT_NE(err.str().find("--max-pixels: 'big'"), std::string::npos) << err.str();
    EXPECT_FALSE(fs::exists(output));
}

// Ctrl+C during a load: the run stops at the load's next step, writes
// nothing and exits as the shell counts an interrupt.
TEST_F(CliTest, AnInterruptStopsTheLoadAndWritesNothing) {
    const std::string input = writeInput("in.bmp", testing::makeVariedPicture(5, 4));
    const std::string second = writeInput("second.bmp", testing::makeVariedPicture(4, 5));
    const std::atomic<int> interrupted{1};
    fs::create_directories(path("out"));
    for (const auto& args : std::vector<std::vector<std::string>>{
             {"convert", input, "-o", path("out.bmp")},
             {"apply", "--effect", "Monotone", input, second, "--out-dir", path("out")}}) {
        EXPECT_EQ(run(args, &interrupted), cli::ExitInterrupted);
        EXPECT_EQ(err.str(), "lumiran-cli: interrupted\n");
        EXPECT_EQ(out.str(), "");
    }
    EXPECT_FALSE(fs::exists(path("out.bmp")));
    EXPECT_TRUE(fs::is_empty(path("out")));
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
        EXPECT_NE(err.str().find("\"" + effectName(entry) + "\" is not available in this version"),
                  std::string::npos)
            << err.str();
        EXPECT_EQ(err.str().find("Class_"), std::string::npos) << err.str();
        EXPECT_FALSE(fs::exists(dir / "o.bmp"));
        break;
    }
}

TEST_F(CliTest, MergesTakeTheKeptImageFromKept) {
    const Surface document = testing::makeVariedPicture(6, 5);
    const std::string input = writeInput("doc.bmp", document);
    // Without a kept image a merge is refused before anything is written.
    EXPECT_EQ(run({"apply", "--effect", "Hide", input, "-o", path("o.bmp")}), cli::ExitUsage);
    EXPECT_NE(err.str().find("--kept FILE"), std::string::npos) << err.str();
    EXPECT_FALSE(fs::exists(dir / "o.bmp"));
    // With one, a smaller kept image changes only the area both share.
    const std::string kept = writeInput("kept.bmp", Surface(3, 2, makePixel(13, 14, 15)));
    ASSERT_EQ(run({"apply", "--effect", "透かし　摘出する", "--c", "2", "--kept", kept, input, "-o",
                   path("o.bmp")}),
              cli::ExitOk)
        << err.str();
    const Surface result = read("o.bmp");
    const Pixel d = document.at(1, 1);
    EXPECT_EQ(result.at(1, 1), makePixel(std::min(255, std::abs(redOf(d) - 13) * 32),
                                         std::min(255, std::abs(greenOf(d) - 14) * 32),
                                         std::min(255, std::abs(blueOf(d) - 15) * 32)));
    EXPECT_EQ(result.at(3, 1), document.at(3, 1));
    EXPECT_EQ(result.at(1, 2), document.at(1, 2));
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
    EXPECT_NE(err.str().find("bad.tga: TGA: "), std::string::npos) << err.str();
    // A run-time error of a reader (a text pixmap in free layout) names the file too.
    std::ofstream(dir / "free.ppm", std::ios::binary) << "P3\n1 1\n255\n1 2 3\n";
    EXPECT_EQ(run({"convert", path("free.ppm"), "-o", path("f.bmp")}), cli::ExitUsage);
    EXPECT_NE(err.str().find("free.ppm: " + errorTitle(13)), std::string::npos) << err.str();
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

std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

TEST_F(CliTest, ListPrintsOneBlockPerEffect) {
    ASSERT_EQ(run({"list", "--keys"}), 0) << err.str();
    const auto blocks = splitBlocks(out.str());
    ASSERT_EQ(blocks.size(), 262u);
    EXPECT_TRUE(blocks[0].starts_with("ﾓﾉﾄｰﾝ\n  name:    Monotone\n")) << blocks[0];
    EXPECT_NE(blocks[0].find("frm_Monotone, code 0"), std::string::npos);
    EXPECT_NE(blocks[0].find("status:  available\n"), std::string::npos);
    EXPECT_NE(blocks[0].find("list C:  ﾓﾉﾄｰﾝ･ﾀｲﾌﾟ: RGB:RGB | RGB:赤"), std::string::npos);

    const auto block = [&](std::string_view heading) {
        const auto it = std::ranges::find_if(blocks, [&](const std::string& b) {
            return b.starts_with(std::string(heading) + "\n");
        });
        return it == blocks.end() ? std::string() : *it;
    };
    const std::string range = block("範囲濃度調整");
    EXPECT_NE(range.find("slider 1: 最小値 0..255, default 64\n"), std::string::npos) << range;
    EXPECT_NE(range.find("slider 2: 最大値 0..255, default 192\n"), std::string::npos) << range;

    if (const EffectEntry* missing = unavailableEffect()) {
        const std::string text = block(missing->key);
        EXPECT_NE(text.find("status:  not available in this version\n"), std::string::npos) << text;
    }
}

// Whatever heads a block or names a compact line can be typed back as
// --effect: the English names by default, the keys with --keys, each finding
// the effect it stands for.
TEST_F(CliTest, ListNamesEveryEffectInEnglishOrByKey) {
    struct Case {
        std::vector<std::string> args;
        bool compact;
        bool keys;
    };
    const Case cases[] = {{{"list"}, false, false},
                          {{"list", "--compact"}, true, false},
                          {{"list", "--keys"}, false, true},
                          {{"list", "--compact", "--keys"}, true, true}};
    for (const Case& c : cases) {
        ASSERT_EQ(run(c.args), 0) << err.str();
        const auto parts = c.compact ? splitLines(out.str()) : splitBlocks(out.str());
        ASSERT_EQ(parts.size(), effectCatalogue().size());
        for (std::size_t i = 0; i < parts.size(); ++i) {
            const EffectEntry& effect = effectCatalogue()[i];
            // A compact line: family, two blanks, the name, maybe a note.
            std::string name = parts[i];
            if (c.compact) {
                name = name.substr(name.find_first_not_of(' ', effect.family.size()));
                name = name.substr(0, name.find("  ("));
                while (!name.empty() && name.back() == ' ')
                    name.pop_back();
            } else {
                name = name.substr(0, name.find('\n'));
            }
            if (c.keys) {
                EXPECT_EQ(name, effect.key) << i;
            } else {
                EXPECT_EQ(name, englishEffectName(effect)) << i;
                // English only, so a reader without Japanese can type it.
                EXPECT_TRUE(std::ranges::all_of(name, [](char ch) {
                    return static_cast<unsigned char>(ch) < 0x80;
                })) << name;
            }
            EXPECT_EQ(findEffect(name), &effect) << name;
        }
    }
    // An entry without an English caption goes by the English of its key.
    ASSERT_EQ(run({"list", "--family", "Composition"}), 0);
    EXPECT_NE(out.str().find("\nShade Range Switch\n"), std::string::npos) << out.str();
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
        EXPECT_EQ(effects[at].toObject()["availability"].toString(),
                  "not available in this version");
        EXPECT_FALSE(effects[at].toObject()["available"].toBool());
    }
}

TEST_F(CliTest, ListRefusesWhatItDoesNotTake) {
    for (const auto& args :
         std::vector<std::vector<std::string>>{{"list", "in.bmp"},
                                               {"list", "--xml"},
                                               {"list", "--json", "-o", "x"},
                                               {"list", "--family"},
                                               {"list", "--family", "Nope"},
                                               {"list", "--compact", "--json"}}) {
        EXPECT_EQ(run(args), cli::ExitUsage) << args[1];
        EXPECT_TRUE(out.str().empty());
        EXPECT_NE(err.str().find("list"), std::string::npos) << err.str();
    }
    // An unknown family is answered with the families there are.
    run({"list", "--family", "Nope"});
    EXPECT_NE(err.str().find("Color Table, Gradation"), std::string::npos) << err.str();
    // Help asked for before or after a command gives the usage, not a refusal.
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{"--help"}, {"apply", "--help"}, {"convert", "in.bmp", "-h"}}) {
        ASSERT_EQ(run(args), 0) << args.back();
        EXPECT_NE(out.str().find("lumiran-cli list [--available] [--family NAME] [--keys] "
                                 "[--compact | --json]"),
                  std::string::npos);
    }
}

std::size_t availableCount() {
    return static_cast<std::size_t>(std::ranges::count_if(effectCatalogue(), [](const auto& e) {
        return planEffect(e.dialog, e.code, defaultControlValues(e)).status ==
               EffectPlan::Status::Ready;
    }));
}

TEST_F(CliTest, ListFiltersByAvailabilityAndFamilyInEveryForm) {
    struct Case {
        std::vector<std::string> args;
        std::size_t lines;        // compact lines, or blocks
        std::string everyLineHas; // in every compact line; empty: nothing to check
    };
    const std::size_t available = availableCount();
    const Case cases[] = {
        {{"list", "--compact"}, 262, ""},
        {{"list", "--compact", "--available"}, available, ""},
        {{"list", "--available"}, available, "status:  available\n"},
        {{"list", "--compact", "--family", "Color Table"}, 18, "Color Table  "},
        {{"list", "--family", "colortableno", "--compact"}, 18, "Color Table  "},
        {{"list", "--family", "ｃｏｌｏｒ　ｔａｂｌｅ", "--compact"}, 18, "Color Table  "},
        {{"list", "--family", "Invasion Effect"}, 7, "family:  Invasion Effect"},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(run(c.args), 0) << c.args.back() << err.str();
        const bool compact = std::ranges::find(c.args, "--compact") != c.args.end();
        const auto parts = compact ? splitLines(out.str()) : splitBlocks(out.str());
        EXPECT_EQ(parts.size(), c.lines) << c.args.back();
        for (const std::string& part : parts) {
            EXPECT_NE(part.find(c.everyLineHas), std::string::npos) << part;
            if (c.args.back() == "--available" || c.args[1] == "--available") {
                EXPECT_EQ(part.find("not available"), std::string::npos) << part;
            }
        }
    }
    // A compact line: family, the name to type and a note where the effect
    // cannot run.
    ASSERT_EQ(run({"list", "--compact"}), 0);
    const auto lines = splitLines(out.str());
    EXPECT_TRUE(lines[0].starts_with("Color ")) << lines[0];
    EXPECT_TRUE(lines[0].ends_with("  Monotone")) << lines[0];
    if (const EffectEntry* missing = unavailableEffect()) {
        const auto at = static_cast<std::size_t>(missing - effectCatalogue().data());
        EXPECT_TRUE(lines[at].ends_with("  (not available in this version)")) << lines[at];
    }
    // Filters reach the JSON form as well.
    ASSERT_EQ(run({"list", "--json", "--family", "Invasion Effect"}), 0);
    EXPECT_EQ(QJsonDocument::fromJson(QByteArray::fromStdString(out.str())).array().size(), 7);
}

TEST_F(CliTest, NamesMatchInEitherWidthAfterNfkc) {
    const std::pair<const char*, const char*> names[] = {
        {"ﾓﾉﾄｰﾝ", "Monotone"},                     // the key as the program has it
        {"モノトーン", "Monotone"},                // full-width katakana
        {"Ｍｏｎｏｔｏｎｅ", "Monotone"},          // full-width ASCII
        {"ポスタライズ", "Posterize"},             // voiced and semi-voiced kana
        {"ホ\u309Aスタライス\u3099", "Posterize"}, // with combining sound marks
        {"ＨＳＶ　周期", "HSV Cycle"},             // full-width letters and space
        {"色のバランス調整 ＲＧＢ", "RGB"},
        {"mean", "Mean(&M)"},
    };
    for (const auto& [typed, caption] : names) {
        const EffectEntry* found = findEffect(typed);
        ASSERT_NE(found, nullptr) << typed;
        EXPECT_EQ(found->caption, caption) << typed;
    }
    // Folding never leads a key to another effect than the key itself does.
    for (const EffectEntry& e : effectCatalogue()) {
        const std::string fullWidth = nfkc(e.key);
        ASSERT_NE(findEffect(fullWidth), nullptr) << fullWidth;
        EXPECT_EQ(findEffect(fullWidth)->key, findEffect(e.key)->key) << fullWidth;
    }
    // The way a Japanese keyboard types it, end to end.
    const Surface picture = testing::makeVariedPicture(5, 4);
    const std::string input = writeInput("in.bmp", picture);
    ASSERT_EQ(run({"apply", "--effect", "モノトーン", input, "-o", path("out.bmp")}), 0)
        << err.str();
    EXPECT_TRUE(read("out.bmp").sameColours(expectedGray(picture, 0)));
}

TEST_F(CliTest, UnknownNamesGetTheNearestNamesAndAPointerToList) {
    const std::pair<const char*, const char*> names[] = {
        {"Monotne", "; did you mean \"Monotone\"?"},
        {"モノトン", "; did you mean \"ﾓﾉﾄｰﾝ\"?"},
        {"blurr", "; did you mean \"Blur\"?"},
        {"mosaik", "; did you mean \"Normal Mosaic\", \"Tile Mosaic\" or \"Gradation Mosaic 1\"?"},
        {"Mono\xfftone", "; did you mean \"Monotone\"?"}, // malformed UTF-8
        {"xyzzy", ""},                                    // nothing near
        {"x", ""},
    };
    const std::string input = writeInput("in.bmp", testing::makeVariedPicture(3, 3));
    for (const auto& [typed, suggestion] : names) {
        EXPECT_EQ(run({"apply", "--effect", typed, input, "-o", path("o.bmp")}), cli::ExitUsage);
        const std::string message = err.str();
        EXPECT_EQ(message, "lumiran-cli: unknown effect '" + std::string(typed) + "'" + suggestion +
                               " ('lumiran-cli list' shows every effect)\n");
    }
}

// The first bytes of a file; empty when there is none.
std::string signatureOf(const fs::path& file) {
    std::string head(4, '\0');
    std::ifstream in(file, std::ios::binary);
    if (!in.read(head.data(), 4)) return "";
    return head;
}

TEST_F(CliTest, OutputsAreBitmapsOrPngByName) {
    const Surface picture = testing::makeVariedPicture(3, 3);
    const std::string input = writeInput("in.bmp", picture);
    const std::string png = "\x89PNG";
    // The name, and the kind written: empty when the name is refused.
    const std::pair<const char*, std::string> names[] = {
        {"a.png", png},  {"b.PNG", png}, {"a.bmp.png", png}, {"a.bmp", "BM"},
        {"b.BMP", "BM"}, {"a.jpg", ""},  {"a", ""},          {"a.png.jpg", ""},
    };
    for (const auto& [name, kind] : names) {
        for (const std::string command : {"apply", "convert"}) {
            std::vector<std::string> args{command, input, "-o", path(name)};
            if (command == "apply") args.insert(args.begin() + 1, {"--effect", "Monotone"});
            EXPECT_EQ(run(args), kind.empty() ? cli::ExitUsage : cli::ExitOk)
                << command << " " << name;
            EXPECT_EQ(signatureOf(dir / name).substr(0, kind.size()), kind)
                << command << " " << name;
            if (kind.empty()) {
                EXPECT_FALSE(fs::exists(dir / name)) << command << " " << name;
                EXPECT_NE(err.str().find("give a name ending in .bmp or .png"), std::string::npos)
                    << err.str();
            } else if (command == "convert") {
                EXPECT_TRUE(read(name).sameColours(picture)) << name;
            }
            fs::remove(dir / name);
        }
    }
}

TEST_F(CliTest, FormatNamesTheKindOfABatchAndPngHasNoOtherDepth) {
    const Surface a = testing::makeVariedPicture(5, 3);
    const std::string inputs[] = {writeInput("a.bmp", a),
                                  writeInput("b.bmp", testing::makeVariedPicture(2, 7))};
    fs::create_directories(dir / "out");
    ASSERT_EQ(run({"apply", "--effect", "Monotone", inputs[0], inputs[1], "--out-dir", path("out"),
                   "--format", "png"}),
              0)
        << err.str();
    EXPECT_EQ(signatureOf(dir / "out" / "b.png"), "\x89PNG");
    EXPECT_TRUE(read("out/a.png").sameColours(expectedGray(a, 0)));
    EXPECT_FALSE(fs::exists(dir / "out" / "a.bmp"));

    struct Refusal {
        std::vector<std::string> options;
        const char* message;
    };
    const Refusal refusals[] = {
        {{"--format", "gif", "--out-dir", path("out")}, "--format: must be bmp or png"},
        {{"--format", "bmp", "-o", path("x.png")}, "--format bmp does not match -o"},
        {{"--bits", "8", "-o", path("x.png")}, "--bits 8: PNG is written at 24 bits"},
        {{"--bits", "1", "--format", "png", "--out-dir", path("out")}, "--bits 1: PNG"},
    };
    for (const Refusal& r : refusals) {
        std::vector<std::string> args{"apply", "--effect", "Monotone", inputs[0]};
        args.insert(args.end(), r.options.begin(), r.options.end());
        EXPECT_EQ(run(args), cli::ExitUsage) << r.message;
        EXPECT_NE(err.str().find(r.message), std::string::npos) << err.str();
    }
    EXPECT_FALSE(fs::exists(dir / "x.png"));
    // 24 bits is what PNG holds, so asking for it is fine.
    EXPECT_EQ(run({"convert", inputs[0], "--bits", "24", "-o", path("x.png")}), 0) << err.str();
}

} // namespace
} // namespace lumiran
