#pragma once

#include "frontends/HttpRequestDetector.h"
#include "frontends/LineAssembler.h"
#include "wire/Descriptor.h"

/// One station's connection, served on a thread of its own: a command is read, run and answered, then
/// the next one.
class NetConnection {
public:
    explicit NetConnection(System::Descriptor socket);

    /// Serves commands until the peer has closed, the connection fails, or a web browser turns out to be
    /// talking. Throws what makes a request impossible, std::bad_alloc in the first place.
    void serve();

private:
    bool readLine();
    void answer();

    System::Descriptor m_socket;
    HttpRequestDetector m_detector;
    LineAssembler m_assembler;
};
