#pragma once

#include <functional>
#include <memory>

#include "editor_bridge/midi_endpoints.h"

namespace orbinex {

/// Who is told what happens on a connection, on a thread that may wait: never one that a MIDI system plays
/// on.
class MIDIListener {
  public:
    MIDIListener() = default;
    MIDIListener(const MIDIListener&) = delete;
    MIDIListener& operator=(const MIDIListener&) = delete;

    /// A message of at least three bytes, cut to its first three.
    virtual void received(const MIDIMessage& message) = 0;
    /// The system has gone, and with it the endpoints.
    virtual void lost() = 0;

  protected:
    ~MIDIListener() = default;
};

/// Our source and our destination in one MIDI system, for as long as this object lives.
class MIDIConnection {
  public:
    MIDIConnection() = default;
    MIDIConnection(const MIDIConnection&) = delete;
    MIDIConnection& operator=(const MIDIConnection&) = delete;
    /// Returns when the listener is called no more.
    virtual ~MIDIConnection() = default;

    /// Never waits. What the system cannot take is dropped.
    virtual void send(const MIDIMessage& message) = 0;
};

/// Makes the endpoints in one system; nothing while that is not there. May take as long as the system takes.
/// The listener must outlive the connection.
using MIDISystem = std::function<std::unique_ptr<MIDIConnection>(MIDIListener& listener)>;

}  // namespace orbinex
