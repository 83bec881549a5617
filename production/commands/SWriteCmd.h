#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "commands/mvbtCmd.h"
#include "core/AbstractCmd.h"
#include "runtime/Mutex.h"

/// Makes the unit's serial channels a pipe for the station: opens them, sends, fetches what has come,
/// closes them. Two numbers beyond those of the serial lines stand for the wireless chip: 240 for its
/// WLAN side, which takes the chip's host commands, and 241 for its Bluetooth side.
class SWriteCmd : public AbstractCmd {
public:
    static SWriteCmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override {
        return run(tokens).release();
    }
    ProcessResponse* process(std::vector<unsigned char>* request) override {
        return run(request).release();
    }

    /// Opens a serial channel. `baud` in bits a second. Of `flags`, bit 0 asks for two stop bits, bits 1
    /// and 2 are 0 for no parity, 4 for even and 6 for odd, bit 3 asks for 7 data bits.
    Answer open(unsigned char channel, unsigned int baud, unsigned char flags);
    /// Closes any channel.
    Answer close(unsigned char channel);

    // --- The WLAN side. A host command: code, size, sequence number and result, 16 bits each, least
    // significant byte first, then data; the size counts all of it. ---

    /// Whether the chip's driver is there. An open link is closed first.
    Answer sdioOpen();
    /// Forgets what has been collected. A reply that has not been fetched stays.
    Answer sdioClose();
    /// Sends the commands that the data complete, as a stream: what is incomplete waits for the next
    /// call. The first one that fails drops the rest. Blocks until the chip has answered each of them.
    Answer sdioSend(const unsigned char* data, std::size_t length);
    /// Collects from the data, from the input position on, up to the end
    /// of one command. Returns how many bytes are left over behind it; -1
    /// when more are needed or, with `response` telling, it is refused.
    int sdioAddToSendBuf(const unsigned char* data, std::size_t length, ProcessResponse* response);
    /// Sends the collected command, and stores the chip's reply in place of the one before.
    Answer sdioDoSend();
    /// Puts at most `size` bytes of the reply at the front of `data`, and forgets it.
    Answer sdioGet(unsigned char size, std::vector<unsigned char>& data);

private:
    SWriteCmd();

    Answer run(const std::vector<std::vector<char>>& tokens);
    Answer run(const std::vector<unsigned char>* request);

    struct SubCommand;
    static const SubCommand kSubCommands[];

    Answer openTavrin(const std::vector<unsigned char>& request);
    Answer closeTavrin(const std::vector<unsigned char>& request);
    Answer sendTavrin(const std::vector<unsigned char>& request);
    Answer getTavrin(const std::vector<unsigned char>& request);
    Answer getAllTavrin(const std::vector<unsigned char>& request);
    Answer answerEmpty(const std::vector<unsigned char>& request, Answer result);

    Answer openAscii(const std::vector<std::vector<char>>& tokens);
    Answer closeAscii(const std::vector<std::vector<char>>& tokens);
    Answer sendAscii(const std::vector<std::vector<char>>& tokens);
    Answer getAscii(const std::vector<std::vector<char>>& tokens);
    Answer getAllAscii(const std::vector<std::vector<char>>& tokens);

    static bool isWireless(unsigned char channel);
    Answer openWireless(unsigned char channel);
    Answer send(unsigned char channel, const unsigned char* data, std::size_t length);
    Answer get(unsigned char channel, unsigned char count, std::vector<unsigned char>& data);
    Answer getAll(unsigned char channel, std::vector<unsigned char>& data);

    unsigned char byteToken(const std::vector<char>& token) const;

    void sdioCollect(const unsigned char* data, std::size_t length, std::size_t end);
    void sdioForget();

    static constexpr int kSdioClosed = -1;
    static constexpr std::size_t kResponseStore = 247;
    static constexpr std::size_t kSendBuffer = 255;

    const bool m_mayTakeStationsChannel = false;

    int m_sdioState = kSdioClosed;
    std::unique_ptr<unsigned char[]> m_responseStore;
    std::size_t m_responseLength = 0;
    std::unique_ptr<unsigned char[]> m_sendBuffer;
    std::uint16_t m_filled = 0;
    std::uint16_t m_expected = 0;
    std::size_t m_inputPosition = 0;

    mvbtCmd m_bluetooth;

    static System::Mutex s_singleton_mutex;
};
