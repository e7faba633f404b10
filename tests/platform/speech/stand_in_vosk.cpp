// A stand-in for the Vosk library: each loud piece of sound is the word "one", a quiet one ends the sentence.

#include <cstdlib>
#include <string>

namespace {

struct Recognizer {
  int words = 0;
  std::string answer;

  const char* tell(const char* key) {
    answer = std::string("{\"") + key + "\" : \"";
    for (int word = 0; word < words; ++word)
      answer += word > 0 ? " one" : "one";
    answer += "\"}";
    return answer.c_str();
  }
};

} // namespace

extern "C" {

void vosk_set_log_level(int) {
}
void* vosk_model_new(const char*) {
  return new int;
}
void vosk_model_free(void* model) {
  delete static_cast<int*>(model);
}
void* vosk_recognizer_new(void*, float rate) {
  return rate == 16000.0F ? new Recognizer : nullptr;
}
void vosk_recognizer_free(void* recognizer) {
  delete static_cast<Recognizer*>(recognizer);
}
void vosk_recognizer_reset(void* recognizer) {
  static_cast<Recognizer*>(recognizer)->words = 0;
}
int vosk_recognizer_accept_waveform_s(void* recognizer, const short* frames, int count) {
  auto* self = static_cast<Recognizer*>(recognizer);
  long sum = 0;
  for (int frame = 0; frame < count; ++frame)
    sum += std::abs(frames[frame]);
  const bool isLoud = sum / count > 100;
  self->words += isLoud;
  return !isLoud && self->words > 0;
}
const char* vosk_recognizer_partial_result(void* recognizer) {
  return static_cast<Recognizer*>(recognizer)->tell("partial");
}
const char* vosk_recognizer_result(void* recognizer) {
  auto* self = static_cast<Recognizer*>(recognizer);
  self->tell("text");
  self->words = 0;
  return self->answer.c_str();
}
const char* vosk_recognizer_final_result(void* recognizer) {
  return vosk_recognizer_result(recognizer);
}
}
