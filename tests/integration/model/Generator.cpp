#include "model/Generator.h"

#include "model/BlockModel.h"
#include "model/Drawing.h"

namespace {

constexpr std::uint32_t kTogether = 40; // requests of each link
constexpr std::uint32_t kAlone = 60;

using Draw = Request (*)(Drawing&);

struct Share {
    std::uint32_t of10000;
    Draw draw;
    bool onlyAlone;
};

// What starts processes takes a thousand times as long as the rest.
constexpr Share kShares[] = {
    {3200, drawMemory, false}, {1000, drawChecksum, false}, {1200, drawBlock, false},
    {1500, drawI2c, false},    {1300, drawPort, false},     {500, drawUnknown, false},
    {700, drawSerial, false},  {380, drawStatus, false},    {180, drawAcknowledgement, false},
    {20, drawExec, false},     {10, drawAudio, true},       {10, drawGraphic, true},
};

class Generator {
public:
    Generator(std::uint64_t seed, const Links& links, Model& model)
        : m_dice(seed), m_links(links), m_model(model) {}

    Sequence take(std::size_t count);

private:
    Request draw(int link, bool isAlone);
    void add(Request request, int link);
    void fillTheScratchBuffer();
    void drawTogether();
    void drawAlone();
    void readAll();

    Dice m_dice;
    const Links& m_links;
    Model& m_model;
    Sequence m_sequence;
    int m_phase = 0;
};

Request Generator::draw(int link, bool isAlone) {
    constexpr std::uint32_t kAll = 10000, kOneMangledIn = 6;
    Drawing drawing{m_dice, m_links[static_cast<std::size_t>(link)], isAlone,
                    isAlone ? static_cast<int>(m_dice.below(Drawing::kParts)) : link};
    std::uint32_t choice = m_dice.below(kAll);
    for (const Share& share : kShares) {
        if (choice >= share.of10000) {
            choice -= share.of10000;
            continue;
        }
        const Request request = (share.onlyAlone && !isAlone ? drawMemory : share.draw)(drawing);
        // Where a mangled one leads is anybody's guess.
        return isAlone && m_dice.oneIn(kOneMangledIn) ? mangled(m_dice, request) : request;
    }
    return drawMemory(drawing);
}

void Generator::add(Request request, int link) {
    request.phase = m_phase;
    request.link = link;
    if (!m_model.knows(request))
        return;
    m_model.predict(request);
    m_sequence.push_back(std::move(request));
}

/// So that it takes no more memory later on, but for what is mangled.
void Generator::fillTheScratchBuffer() {
    Drawing drawing{m_dice, false, true, 0};
    const int line = static_cast<int>(m_links.size()) - 1;
    for (const char* request :
         {"blockdev open 180 0", "blockdev read 180 0 0 2047 0", "blockdev close 180 0"})
        add(drawing.line(request, {}), line);
    ++m_phase;
}

void Generator::drawTogether() {
    for (std::uint32_t turn = 0; turn < kTogether; ++turn)
        for (std::size_t link = 0; link < m_links.size(); ++link)
            add(draw(static_cast<int>(link), false), static_cast<int>(link));
    ++m_phase;
}

void Generator::drawAlone() {
    const int link = static_cast<int>(m_dice.below(static_cast<std::uint32_t>(m_links.size())));
    for (std::uint32_t turn = 0; turn < kAlone; ++turn)
        add(draw(link, true), link);
    ++m_phase;
}

void Generator::readAll() {
    Drawing drawing{m_dice, false, true, 0};
    const int line = static_cast<int>(m_links.size()) - 1;
    for (const char* request : {"diag cksum 0 0 0x1000000", "port getattributes",
                                "i2c getattributes 0 0", "i2c getattributes 0 1", "i2c read 0 128 0x50",
                                "i2c read 0 128 0x50", "i2c read 0 2 0x48", "i2c read 0 1 0x20"})
        add(drawing.line(request, {}), line);
    ++m_phase;
}

Sequence Generator::take(std::size_t count) {
    fillTheScratchBuffer();
    while (m_sequence.size() < count) {
        drawTogether();
        drawAlone();
    }
    readAll();
    return std::move(m_sequence);
}

} // namespace

Sequence generate(std::uint64_t seed, std::size_t count, const Links& links, Model& model) {
    return Generator(seed, links, model).take(count);
}
