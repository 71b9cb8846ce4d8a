// The vector kernels of the tent's tables against plain loops, and the rows that are put together of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include "FrameBuffer.h"
#include "RowDispatch.h"
#include "SecondOrderRows.h"
#include "SimdLevels.h"

namespace PILib {
namespace {

template <class C, class Cell>
struct Variant {
    using Channel = C;
    using CellType = Cell;
};

template <class V>
class TableKernelsTest : public testing::Test {
protected:
    using Cell = typename V::CellType;
    static constexpr std::size_t kAfter = 20;  // elements past the end that are not the kernel's

    std::vector<Cell> cells(std::size_t count) {
        std::vector<Cell> row(count);
        for (Cell& cell : row)
            cell = static_cast<Cell>(std::uint64_t{generator()} << 32 | generator());
        return row;
    }

    template <class T>
    T upTo(T largest) {
        return static_cast<T>(generator() % (std::uint64_t{largest} + 1));
    }

    std::mt19937 generator{1};
};

using Variants = testing::Types<Variant<Channel8, std::uint32_t>, Variant<Channel8, std::uint64_t>,
                                Variant<Channel15, std::uint32_t>, Variant<Channel15, std::uint64_t>>;
TYPED_TEST_SUITE(TableKernelsTest, Variants);

template <class Cell>
auto SumsTwiceOf(const detail::DepthKernels& kernels) {
    if constexpr (sizeof(Cell) == 4) {
        return kernels.narrowSumsTwice;
    } else {
        return kernels.wideSumsTwice;
    }
}

template <class Cell>
auto AddDownOf(const detail::DepthKernels& kernels) {
    if constexpr (sizeof(Cell) == 4) {
        return kernels.narrowAddDown;
    } else {
        return kernels.wideAddDown;
    }
}

TYPED_TEST(TableKernelsTest, RunningSumsOfRunningSumsAreThoseOfAPlainLoop) {
    using C = typename TypeParam::Channel;
    using Cell = typename TypeParam::CellType;
    constexpr auto kFull = static_cast<typename C::Type>(C::kOne);
    // Of wide cells, the first running sums stay within 32 bits; those of narrow ones wrap.
    constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();
    constexpr std::uint32_t kLargestStart = sizeof(Cell) == 4 ? kLargest : kLargest - 70U * C::kOne;
    for (const SimdLevel level : VectorLevels()) {
        for (std::size_t count = 1; count <= 70; ++count) {
            std::vector<Pixel<C>> pixels(count);
            for (Pixel<C>& p : pixels)
                p = {this->upTo(kFull), this->upTo(kFull), this->upTo(kFull), this->upTo(kFull)};
            detail::RowToSumTwice<Cell> row = {.pixels = pixels.data(),
                                               .count = static_cast<std::int32_t>(count)};
            std::array<std::vector<Cell>, 4> actual;
            std::array<std::vector<Cell>, 4> expected;
            for (std::size_t table = 0; table < 4; ++table) {
                actual[table] = this->cells(count + this->kAfter);
                row.sums[table] = actual[table].data();
                row.start[table] = table == 0 ? kLargestStart : this->upTo(kLargestStart);
                row.startTwice[table] = this->cells(1)[0];
                expected[table] = actual[table];
                std::uint32_t sum = row.start[table];
                Cell twice = row.startTwice[table];
                for (std::size_t x = 0; x < count; ++x) {
                    const Pixel<C>& p = pixels[x];
                    const std::array<std::uint32_t, 4> values = {
                        C::mul(p.red, p.alpha), C::mul(p.green, p.alpha), C::mul(p.blue, p.alpha), p.alpha};
                    sum += values[table];
                    twice += sum;
                    expected[table][x] = twice;
                }
            }
            SumsTwiceOf<Cell>(detail::KernelsFor<C>(level))(row);
            ASSERT_EQ(expected, actual) << "level " << static_cast<int>(level) << ", pixels " << count;
        }
    }
}

TYPED_TEST(TableKernelsTest, SumsDownTheColumnsAreThoseOfAPlainLoop) {
    using Cell = typename TypeParam::CellType;
    using Row = std::vector<Cell>;
    for (const SimdLevel level : VectorLevels()) {
        for (std::size_t count = 0; count <= 70; ++count) {
            const Row above = this->cells(count);
            Row column = this->cells(count + this->kAfter);
            std::array<Row, detail::kRowsAddedDown> addends;
            std::array<Row, detail::kRowsAddedDown> outs;
            detail::RowsToAddDown<Cell> rows = {
                .addends = {}, .column = column.data(), .above = above.data(), .outs = {}, .count = count};
            for (std::size_t row = 0; row < detail::kRowsAddedDown; ++row) {
                addends[row] = this->cells(count);
                outs[row] = this->cells(count + this->kAfter);
                rows.addends[row] = addends[row].data();
                rows.outs[row] = outs[row].data();
            }
            rows.addends[1] = rows.addends[0];
            Row expectedColumn = column;
            auto expectedOuts = outs;
            for (std::size_t i = 0; i < count; ++i) {
                Cell sum = above[i];
                for (std::size_t row = 0; row < detail::kRowsAddedDown; ++row) {
                    expectedColumn[i] += rows.addends[row][i];
                    sum += expectedColumn[i];
                    expectedOuts[row][i] = sum;
                }
            }
            AddDownOf<Cell>(detail::KernelsFor<typename TypeParam::Channel>(level))(rows);
            ASSERT_EQ(expectedColumn, column) << "level " << static_cast<int>(level) << ", cells " << count;
            ASSERT_EQ(expectedOuts, outs) << "level " << static_cast<int>(level) << ", cells " << count;
        }
    }
}

// 131071 cells of full scale are the most whose running sum has 32 bits.
TEST(SecondOrderRowsTest, WhiteRowsAroundTheWidestOfVectorsAreThoseOfAFormula) {
    using C = Channel15;
    constexpr int kBorder = 3;
    for (const int tableWidth : {65535, 65537, 131071, 131072, 131200, 140000}) {
        const SimplePixelBuffer<Pixel<C>> source(tableWidth - 2 * kBorder, 1);
        std::fill(source.row(0).begin(), source.row(0).end(), Pixel<C>::kWhiteColor);
        for (const SimdLevel level : SupportedLevels()) {
            detail::SecondOrderRows<C, std::uint64_t> rows(level, kBorder, tableWidth);
            std::array<std::vector<std::uint64_t>, 4> tables;
            for (auto& table : tables)
                table.resize(static_cast<std::size_t>(tableWidth));
            rows.writeNext(1, [&source](int /*row*/) { return source.row(0); },
                           {tables[0].data(), tables[1].data(), tables[2].data(), tables[3].data()});
            for (const auto& table : tables) {
                for (std::size_t i = 0; i < table.size(); ++i) {
                    const std::uint64_t n = i + 1;
                    ASSERT_EQ(C::kOne * (n * (n + 1) / 2), table[i])
                        << "level " << static_cast<int>(level) << ", width " << tableWidth;
                }
            }
        }
    }
}

}  // namespace
}  // namespace PILib
