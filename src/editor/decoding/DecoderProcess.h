// Files from strangers are decoded in a program of their own that can do nothing but compute; what it dies of
// costs a picture, never the editor.
#pragma once

#include "editor/decoding/DecoderRoom.h"
#include "editor/decoding/PictureDecoder.h"

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace pictorel {

class AnswerMemory;

struct OpenFile {
    Descriptor descriptor;
    std::int64_t bytes = 0;
};

// Every picture has a run of the program to itself, so that one picture cannot touch the next; the run for
// the next is started as soon as the last is over. Drawings take another, with the machine's fonts loaded,
// which is started when the first drawing comes and kept ready from then on.
//
// To be made and used in one thread, the one that lasts as long as the editor: the programs end with it.
class DecoderProcess : public PictureDecoder {
  public:
    // A picture that takes longer than `patience` is given up.
    explicit DecoderProcess(std::string program,
                            std::chrono::milliseconds patience = std::chrono::minutes(2));

    std::optional<PixelArray> Decode(const std::string& fileName) override;

    // Asked again and again while a picture is decoded; false ends the decoding at once, and the picture
    // counts as refused. It may paint, but not decode another.
    void SetKeepWaiting(KeepWaiting keepWaiting) { keepWaiting_ = std::move(keepWaiting); }

    // The walls of this machine by name, those that stand and those that it lacks; neither where the program
    // cannot be started.
    struct WallReport {
        std::vector<std::string> standing;
        std::vector<std::string> lacking;
    };
    WallReport Walls();

  private:
    using Room = std::unique_ptr<DecoderRoom>;
    enum class Outcome { Picture, NeedsFonts, NoProgram };
    struct Decoded {
        Outcome outcome;
        PixelArray picture;
    };

    class Change;
    Room TakeRoom(Room& waiting, bool withFonts) const;
    Decoded DecodeIn(Room& waiting, bool withFonts, const OpenFile& file);
    std::optional<decoder::Answer> Ask(DecoderRoom& room, const OpenFile& file,
                                       const AnswerMemory& memory) const;

    std::string program_;
    std::chrono::milliseconds patience_;
    KeepWaiting keepWaiting_;
    Room plain_;           // waiting for its picture
    Room drawings_;        // the same; null until a drawing came
    std::jthread leaving_; // waits until the last program is gone, which gives its memory back meanwhile
};

} // namespace pictorel
