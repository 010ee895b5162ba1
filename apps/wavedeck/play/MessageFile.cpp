#include "MessageFile.h"

namespace program {

bool MessageFile::write(std::string_view client, std::string_view event, std::string_view message) {
    line_ = "{\"client\":\"";
    line_ += client;
    line_ += "\",\"event\":\"";
    line_ += event;
    line_ += "\",\"message\":";
    line_ += message;
    line_ += "}\n";
    return file_.write(line_);
}

}  // namespace program
