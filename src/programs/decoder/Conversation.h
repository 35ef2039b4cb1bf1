// The program's end of the socket: it says that it is ready, takes one request, and answers it.
#pragma once

#include "picture/codecs/Codec.h"
#include "programs/decoder/DecoderMessages.h"

namespace pictorel::decoder {

// False where the editor has gone.
bool SayReady(int socket, std::uint32_t walls) noexcept;

// Waits for the request and answers it with what `formats` make of the file; a drawing is decoded only where
// `hasFonts`. False where the editor has gone or asks for what cannot be.
bool AnswerOneRequest(int socket, const codecs::CodecTable& formats, bool hasFonts);

} // namespace pictorel::decoder
