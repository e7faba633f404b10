#include "platform/AudioInput.h"

namespace notlet {

Error describe(const AudioError& error) {
  switch (error.fault) {
  case AudioFault::noService:
    return {"No sound service is running on this computer."};
  case AudioFault::accessDenied:
    return {"Microphone access is required to dictate your thoughts."};
  case AudioFault::noMicrophone:
    return {"No microphone was found. Connect one and try again."};
  case AudioFault::busy:
    return {"The microphone is in use by another application."};
  case AudioFault::noAnswer:
    return {"The sound service does not answer. Try again."};
  case AudioFault::lost:
    return {"The microphone was disconnected."};
  case AudioFault::noFrames:
    return {"The microphone sends no sound. Check it and try again."};
  case AudioFault::notInstalled:
  case AudioFault::notStarted:
    return {error.detail};
  case AudioFault::other:
    break;
  }
  return {"The microphone could not be used: " + error.detail + "."};
}

} // namespace notlet
