// Golden hashes of the Class_Geometry block effects, blurs and diffusion at
// their defaults on the bundled sample (random draws from a fresh
// generator): a guard against accidental change, not a test of the rules.
// Scroll's default of 0 % leaves the picture; its kinds are tested apart.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(
    GeometryBlocks, GoldenDefaults,
    ::testing::Values(
        Golden{"Scroll", "6d1b6d4d8a32da3e"}, Golden{"Gradually Enlarge", "cde23504158fcba1"},
        Golden{"Notches", "bd10c64dbaf21640"}, Golden{"Slope", "7ea54ee8c9ee7587"},
        Golden{"Slope", "b2eeb719f504a9c1", 0, 1},
        // Only "垂直" with "ﾉｰﾏﾙ" shears vertically; "垂直" with "逆" is the
        // default call, the horizontal reverse.
        Golden{"Slope", "c84a24b72af780f2", 1}, Golden{"Slope", "c84a24b72af780f2", 1, 1},
        Golden{"Random Circle", "1c61c4ad7200bcaf"},
        Golden{"Random Circle", "b77bcec62be77c96", 14},
        // The other radius forms and sources: circles larger than a block,
        // from the block's centre, of random radius from random places.
        Golden{"Random Circle", "b1f60ea0f1c551d6", 3},
        Golden{"Random Circle", "3cdaeb38b591f1a4", 7},
        Golden{"Random Circle", "dac828d10985a460", 11},
        Golden{"Block Replace", "0e9506032f2e92ee"},
        Golden{"Block Replace", "531fbebca71b0662", 1, 2},
        Golden{"Replace Processing", "8298ea6eebbebe4a"}, Golden{"Jagged", "185369ecdd3f167a"},
        Golden{"Jagged", "4e6eacc6cbbb146b", 3}, Golden{"Cutting Picture", "fca6b25bdc4f8dce"},
        Golden{"Block Scatter Type 1", "4f0a0570e23b48c2"},
        Golden{"Block Scatter Type 1", "d5dfd18a35408def", {}, 3},
        Golden{"Block Scatter Type 2", "1a5a9a6576e604e8"},
        Golden{"Block Scatter Type 2", "654a7ba33fd14536", 3, 2},
        Golden{"Squeeze", "13c99f6919fd108c"}, Golden{"Pelican", "395e68e15bbfc33a"},
        Golden{"Crank", "c8de46d993db6eba"}, Golden{"Crank", "14f6bc6db6dc66b4", 1},
        // The blur maps are the scroll types 1..8 of the first direction;
        // the pairs the catalogue does not name blur plainly.
        Golden{"Blur", "43cd4952d16a3904"}, Golden{"Blur", "98adce6b947a57ee", 1, 0},
        Golden{"Blur", "e265a9cff53707a1", 8, 0}, Golden{"Blur", "525caf6959ce3bfd", 1, 2},
        Golden{"Blur", "525caf6959ce3bfd", {}, 2}, Golden{"Blur", "43cd4952d16a3904", 12, 0},
        Golden{"Gaussian Blur", "2db3087f1c0fc77e"},
        Golden{"Gaussian Blur", "6accb871ffbeb060", {}, 8},
        Golden{"Gaussian Blur", "918cbbf8dbd3ae8b", {}, 10},
        Golden{"Gaussian Blur", "59cfc1e9d3ff61d8", 3, 0},
        Golden{"Gaussian Blur", "956e7dca2db517fc", 3, 2},
        Golden{"Gaussian Blur", "956e7dca2db517fc", {}, 2}, Golden{"Slide", "4e3d46c403d18a57"},
        Golden{"Slide", "eeb72e17787af337", 1, 1}, Golden{"Bring Right Under", "f15cb8519e22e6d1"},
        Golden{"Bring Left Top", "f1346e5d0100e15e", 1},
        Golden{"Bring Depression", "03017eef9b5061b2"},
        Golden{"Diffuse Outline", "46a2e5df6d42b422"},
        Golden{"Diffuse Outline", "4184b8bfedab7c6d", 1, 0},
        // The second spread type exists for the first direction only.
        Golden{"Diffuse Outline", "4dd92add1562e400", 1, 2},
        Golden{"Diffuse Outline", "4dd92add1562e400", 0, 2}),
    goldenTestName);

} // namespace lumiran::testing
