// A session's checkpoint as a part of a larger JSON object, for programs that keep more beside it.
//
// The object has "model", the fingerprint of the model; "settings", an object; and "tracker" (MemoryJson.h). Members of other
// names, in it and in "settings", are left to the caller.
#pragma once

#include "session/Adopt.h"
#include "session/CheckpointField.h"

namespace session {

class Session;

/// What Session::checkpoint() writes.
nlohmann::json checkpointJson(const Session& session);

/// The checks of Session::resume(), and no more. False where the model has other probabilities, and that is adopted. Throws OtherModel,
/// OtherSetting, or DamagedCheckpoint where something is missing.
bool checkSame(const Session& session, const CheckpointField& checkpoint,
               Adopt adopt = Adopt::sameModel);

/// Goes on from what is believed in the checkpoint, without those checks. Throws DamagedCheckpoint when that is damaged; the
/// session is as before then.
void restore(Session& session, const CheckpointField& checkpoint);

} // namespace session
