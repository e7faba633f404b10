#include "platform/speech/PulseSession.h"

#include <algorithm>

namespace notlet {

namespace {

AudioFault faultOf(int code, AudioFault otherwise) {
  switch (code) {
  case PA_ERR_CONNECTIONREFUSED:
  case PA_ERR_INVALIDSERVER:
  case PA_ERR_AUTHKEY:
    return AudioFault::noService;
  case PA_ERR_ACCESS:
    return AudioFault::accessDenied;
  case PA_ERR_NOENTITY:
    return AudioFault::noMicrophone;
  case PA_ERR_BUSY:
    return AudioFault::busy;
  case PA_ERR_TIMEOUT:
    return AudioFault::noAnswer;
  default:
    return otherwise;
  }
}

pa_usec_t inMicroseconds(std::chrono::milliseconds time) {
  return static_cast<pa_usec_t>(std::chrono::microseconds(time).count());
}

} // namespace

PulseSession::PulseSession(const PulseInput::Patience& patience, int stopping)
    : m_patience(patience), m_loop(pa_mainloop_new()) {
  pa_mainloop_api* api = pa_mainloop_get_api(m_loop);
  api->io_new(
      api, stopping, PA_IO_EVENT_INPUT,
      [](pa_mainloop_api*, pa_io_event*, int, pa_io_event_flags_t, void* self) {
        static_cast<PulseSession*>(self)->end({});
      },
      this);
}

PulseSession::~PulseSession() {
  if (m_stream != nullptr) {
    pa_stream_set_state_callback(m_stream, nullptr, nullptr);
    pa_stream_set_moved_callback(m_stream, nullptr, nullptr);
    pa_stream_set_read_callback(m_stream, nullptr, nullptr);
    pa_stream_disconnect(m_stream);
    pa_stream_unref(m_stream);
  }
  if (m_timer != nullptr)
    pa_mainloop_get_api(m_loop)->time_free(m_timer);
  if (m_context != nullptr) {
    pa_context_set_state_callback(m_context, nullptr, nullptr);
    pa_context_disconnect(m_context);
    pa_context_unref(m_context);
  }
  pa_mainloop_free(m_loop);
}

std::expected<void, AudioError> PulseSession::probe() {
  return run();
}

std::expected<void, AudioError> PulseSession::listen(const AudioInput::Listener& listener) {
  m_listener = &listener;
  return run();
}

std::expected<void, AudioError> PulseSession::run() {
  connect();
  while (!m_outcome)
    if (pa_mainloop_iterate(m_loop, 1, nullptr) < 0)
      fail(AudioFault::other, "the connection to the sound service broke");
  return *m_outcome;
}

void PulseSession::connect() {
  pa_proplist* properties = pa_proplist_new();
  pa_proplist_sets(properties, PA_PROP_APPLICATION_NAME, "Notlet");
  pa_proplist_sets(properties, PA_PROP_APPLICATION_ID, "org.notlet.Notlet");
  pa_proplist_sets(properties, PA_PROP_APPLICATION_ICON_NAME, "org.notlet.Notlet");
  m_context = pa_context_new_with_proplist(pa_mainloop_get_api(m_loop), nullptr, properties);
  pa_proplist_free(properties);
  pa_context_set_state_callback(
      m_context, [](pa_context*, void* self) { static_cast<PulseSession*>(self)->contextChanged(); }, this);
  waitAtMost(m_patience.answer, AudioFault::noAnswer);
  if (!m_outcome && pa_context_connect(m_context, nullptr, PA_CONTEXT_NOFLAGS, nullptr) < 0)
    failAsService(AudioFault::noService);
}

void PulseSession::contextChanged() {
  const pa_context_state_t state = pa_context_get_state(m_context);
  if (!PA_CONTEXT_IS_GOOD(state))
    return failAsService(m_isListening ? AudioFault::lost : AudioFault::noService);
  if (state != PA_CONTEXT_READY)
    return;
  waitAtMost(m_patience.answer, AudioFault::noAnswer);
  if (m_listener != nullptr)
    openStream();
  else
    checkSource();
}

void PulseSession::openStream() {
  constexpr pa_sample_spec format{PA_SAMPLE_S16NE, AudioInput::sampleRate, 1};
  m_stream = pa_stream_new(m_context, "Dictation", &format, nullptr);
  if (m_stream == nullptr)
    return failAsService(AudioFault::other);
  pa_stream_set_state_callback(
      m_stream, [](pa_stream*, void* self) { static_cast<PulseSession*>(self)->streamChanged(); }, this);
  // When the microphone is unplugged the service moves the stream to what is left, be it the sound of the
  // loudspeakers.
  pa_stream_set_moved_callback(
      m_stream, [](pa_stream*, void* self) { static_cast<PulseSession*>(self)->checkSource(); }, this);
  pa_stream_set_read_callback(
      m_stream, [](pa_stream*, std::size_t, void* self) { static_cast<PulseSession*>(self)->readFrames(); },
      this);
  constexpr auto whateverFits = static_cast<std::uint32_t>(-1);
  const pa_buffer_attr pieces{
      .maxlength = whateverFits,
      .tlength = whateverFits,
      .prebuf = whateverFits,
      .minreq = whateverFits,
      .fragsize = AudioInput::chunkFrames * sizeof(std::int16_t),
  };
  if (pa_stream_connect_record(m_stream, nullptr, &pieces, PA_STREAM_ADJUST_LATENCY) < 0)
    failAsService(AudioFault::other);
}

void PulseSession::streamChanged() {
  const pa_stream_state_t state = pa_stream_get_state(m_stream);
  if (!PA_STREAM_IS_GOOD(state))
    failAsService(m_isListening ? AudioFault::lost : AudioFault::other);
  else if (state == PA_STREAM_READY)
    checkSource();
}

/// Asks what kind of source it is; until the answer nothing is heard.
void PulseSession::checkSource() {
  m_hearsMicrophone = false;
  const auto answered = [](pa_context*, const pa_source_info* source, int end, void* self) {
    if (end < 0)
      static_cast<PulseSession*>(self)->sourceRefused();
    else if (end == 0)
      static_cast<PulseSession*>(self)->sourceFound(source);
  };
  pa_operation* question =
      m_stream == nullptr ? pa_context_get_source_info_by_name(m_context, "@DEFAULT_SOURCE@", answered, this)
                          : pa_context_get_source_info_by_index(
                                m_context, pa_stream_get_device_index(m_stream), answered, this);
  if (question == nullptr)
    return failAsService(AudioFault::other);
  pa_operation_unref(question);
}

void PulseSession::sourceFound(const pa_source_info* source) {
  if (source->monitor_of_sink != PA_INVALID_INDEX)
    return fail(m_isListening ? AudioFault::lost : AudioFault::noMicrophone,
                "only the sound of the loudspeakers");
  if (m_stream == nullptr)
    return end({});
  m_hearsMicrophone = true;
  if (!m_isListening)
    beginListening();
}

void PulseSession::sourceRefused() {
  // A source that has gone again meanwhile: the service moves the stream once more, or ends it.
  if (!m_isListening)
    failAsService(AudioFault::noMicrophone);
}

void PulseSession::beginListening() {
  m_isListening = true;
  waitAtMost(m_patience.frames, AudioFault::noFrames);
  m_listener->started();
}

void PulseSession::readFrames() {
  const void* bytes = nullptr;
  std::size_t size = 0;
  while (!m_outcome && pa_stream_readable_size(m_stream) > 0 &&
         pa_stream_peek(m_stream, &bytes, &size) == 0 && size > 0) {
    // Without bytes the service has skipped some sound.
    if (bytes != nullptr && m_hearsMicrophone)
      hear(static_cast<const std::int16_t*>(bytes), size / sizeof(std::int16_t));
    pa_stream_drop(m_stream);
  }
}

/// Hands over pieces of the one size.
void PulseSession::hear(const std::int16_t* frames, std::size_t count) {
  waitAtMost(m_patience.frames, AudioFault::noFrames);
  m_frames.insert(m_frames.end(), frames, frames + count);
  std::size_t begin = 0;
  for (; m_frames.size() - begin >= AudioInput::chunkFrames; begin += AudioInput::chunkFrames)
    m_listener->heard(AudioFrames(m_frames).subspan(begin, AudioInput::chunkFrames));
  m_frames.erase(m_frames.begin(), m_frames.begin() + static_cast<std::ptrdiff_t>(begin));
}

/// Fails with this when nothing else is awaited within the time.
void PulseSession::waitAtMost(std::chrono::milliseconds time, AudioFault fault) {
  m_faultOfTimer = fault;
  const pa_usec_t due = pa_rtclock_now() + inMicroseconds(time);
  if (m_timer != nullptr)
    return pa_context_rttime_restart(m_context, m_timer, due);
  m_timer = pa_context_rttime_new(
      m_context, due,
      [](pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
        auto* session = static_cast<PulseSession*>(self);
        session->fail(session->m_faultOfTimer, "the time is up");
      },
      this);
}

void PulseSession::end(std::expected<void, AudioError> outcome) {
  if (!m_outcome)
    m_outcome = std::move(outcome);
}

void PulseSession::failAsService(AudioFault otherwise) {
  const int code = pa_context_errno(m_context);
  fail(faultOf(code, otherwise), pa_strerror(code));
}

} // namespace notlet
