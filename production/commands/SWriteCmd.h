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

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override;
    ProcessResponse* process(std::vector<unsigned char>* request) override;

    /// Opens a serial channel. `baud` in bits a second. Of `flags`, bit 0 asks for two stop bits, bits 1
    /// and 2 are 0 for no parity, 4 for even and 6 for odd, bit 3 asks for 7 data bits.
    ProcessResponse* open(unsigned char channel, unsigned int baud, unsigned char flags);
    /// Closes any channel.
    ProcessResponse* close(unsigned char channel);

    // --- The WLAN side. A host command: code, size, sequence number and result, 16 bits each, least
    // significant byte first, then data; the size counts all of it. ---

    /// Whether the chip's driver is there. An open link is closed first.
    ProcessResponse* sdioOpen();
    /// Forgets what has been collected. A reply that has not been fetched stays.
    ProcessResponse* sdioClose();
    /// Sends the commands that the data complete, as a stream: what is incomplete waits for the next
    /// call. The first one that fails drops the rest. Blocks until the chip has answered each of them.
    ProcessResponse* sdioSend(const unsigned char* data, std::size_t length);
    /// Collects from the data, from the input position on, up to the end
    /// of one command. Returns how many bytes are left over behind it; -1
    /// when more are needed or, with `response` telling, it is refused.
    int sdioAddToSendBuf(const unsigned char* data, std::size_t length, ProcessResponse* response);
    /// Sends the collected command, and stores the chip's reply in place of the one before.
    ProcessResponse* sdioDoSend();
    /// Puts at most `size` bytes of the reply at the front of `data`, and forgets it.
    ProcessResponse* sdioGet(unsigned char size, std::vector<unsigned char>& data);

private:
    SWriteCmd();

    ProcessResponse* openTavrin(std::vector<unsigned char>* request);
    ProcessResponse* closeTavrin(std::vector<unsigned char>* request);
    ProcessResponse* sendTavrin(std::vector<unsigned char>* request);
    ProcessResponse* getTavrin(std::vector<unsigned char>* request);
    ProcessResponse* getAllTavrin(std::vector<unsigned char>* request);

    ProcessResponse* openAscii(const std::vector<std::vector<char>>& tokens);
    ProcessResponse* closeAscii(const std::vector<std::vector<char>>& tokens);
    ProcessResponse* sendAscii(const std::vector<std::vector<char>>& tokens);
    ProcessResponse* getAscii(const std::vector<std::vector<char>>& tokens);
    ProcessResponse* getAllAscii(const std::vector<std::vector<char>>& tokens);

    ProcessResponse* openWireless(unsigned char channel);
    ProcessResponse* send(unsigned char channel, const unsigned char* data, std::size_t length);
    ProcessResponse* get(unsigned char channel, unsigned char count, std::vector<unsigned char>& data);
    ProcessResponse* getAll(unsigned char channel, std::vector<unsigned char>& data);

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
