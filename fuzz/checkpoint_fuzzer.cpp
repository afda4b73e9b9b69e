// Goes on from any bytes in place of a checkpoint. It is refused in the session's own words, and the session is as before; or the session
// goes on, and its own checkpoint leads to the same again.
#include "fuzz/FuzzPlant.h"

#include <cstdint>

namespace {

// What was believed after two steps. One plant for all runs: one is as another before it goes on.
FuzzPlant& followed()
{
    static FuzzPlant plant;
    return plant;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::string before = followed().session().checkpoint().text;
    session::Session& session = followed().session();
    session.resume({before});
    try {
        session.resume({std::string(reinterpret_cast<const char*>(data), size)});
    } catch (const session::CheckpointError& error) {
        require(error.what()[0] != '\0', "what is refused has a reason");
        require(session.checkpoint().text == before, "and the session is as before");
        return 0;
    }
    const std::string own = session.checkpoint().text;
    session.resume({own});
    require(session.checkpoint().text == own, "its own checkpoint is read as it was written");
    FuzzPlant other;
    other.session().resume({own});
    other.skip(2);
    other.advance(2);
    require(!other.session().answer().hypotheses.empty(), "something is believed after a step");
    return 0;
}
