#include "portal/chart/PieLabels.h"

#include <algorithm>

size_t PieLabelRoom(double gap, double low, double high) {
    return high < low ? 0 : static_cast<size_t>((high - low) / gap) + 1;
}

// Labels that come too near join in a block, which stands so that the mean of its labels is where
// the mean of their wishes is; blocks that then touch join in their turn.
std::vector<double> SpreadPieLabels(const std::vector<double>& wanted, double gap, double low,
                                    double high) {
    struct Block {
        double top;  // of its first label
        double sum;  // of what its labels wish for the first one
        size_t count;
    };
    std::vector<Block> blocks;
    const auto place = [&](Block& block) {
        const double height = gap * static_cast<double>(block.count - 1);
        const double wish = block.sum / static_cast<double>(block.count);
        block.top = std::max(std::min(wish, high), std::min(low + height, high));
    };
    for (const double wish : wanted) {
        blocks.push_back({0, wish, 1});
        place(blocks.back());
        while (blocks.size() > 1) {
            const Block last = blocks.back();
            Block& above = blocks[blocks.size() - 2];
            const double height = gap * static_cast<double>(above.count);
            if (above.top - height >= last.top) break;
            above.sum += last.sum + height * static_cast<double>(last.count);
            above.count += last.count;
            blocks.pop_back();
            place(above);
        }
    }
    std::vector<double> placed;
    for (const Block& block : blocks)
        for (size_t i = 0; i < block.count; ++i)
            placed.push_back(block.top - gap * static_cast<double>(i));
    return placed;
}
