#pragma once

#include "imagefiles/load_dispatch.h"

// The module beside lumiran-cli that holds the platform's picture decoder,
// and the function it exports: it makes a decoder (and the graphics
// application the decoder needs); the caller owns it.
#define LUMIRAN_DECODER_MODULE "lumiran-cli-platform.so"
#define LUMIRAN_DECODER_FACTORY lumiranCreatePlatformDecoder
#define LUMIRAN_DECODER_FACTORY_NAME "lumiranCreatePlatformDecoder"

extern "C" lumiran::PlatformDecoder* LUMIRAN_DECODER_FACTORY(char* program);
