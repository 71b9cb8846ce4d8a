#include "RequestQueue.h"

#include <gtest/gtest.h>

namespace perch::test {
namespace {

QueuedRequest request(std::uint64_t id, const std::string& kind, std::int64_t serial) {
    return {.request = {.id = id, .method = "GET", .path = "/api/picture", .query = {}, .body = {}},
            .kind = kind,
            .serial = serial};
}

std::vector<std::uint64_t> idsOf(const std::vector<ViewRequest>& requests) {
    std::vector<std::uint64_t> ids;
    for (const ViewRequest& one : requests)
        ids.push_back(one.id);
    return ids;
}

using Ids = std::vector<std::uint64_t>;

TEST(RequestQueueTest, ANewerPictureTakesOlderOnesOfItsKindOut) {
    RequestQueue queue;
    EXPECT_EQ(idsOf(queue.add(request(1, "result", 7))), Ids{});
    EXPECT_EQ(idsOf(queue.add(request(2, "layer", 7))), Ids{});
    EXPECT_EQ(idsOf(queue.add(request(3, "result", 9))), Ids{1});
    EXPECT_EQ(queue.next()->request.id, 2U);
    EXPECT_EQ(queue.next()->request.id, 3U);
}

TEST(RequestQueueTest, APictureThatIsOlderThanAnyKnownIsOvertakenAtOnce) {
    RequestQueue queue;
    queue.add(request(1, "result", 9));
    queue.next();
    EXPECT_EQ(idsOf(queue.add(request(2, "result", 8))), Ids{2});
}

TEST(RequestQueueTest, ThePictureUnderWayIsCancelledByANewerOneOfItsKindAlone) {
    RequestQueue queue;
    queue.add(request(1, "result", 7));
    queue.next();
    queue.add(request(2, "layer", 9));
    queue.add(request(3, "", 9));
    queue.add(request(4, "result", 7));  // at another size
    EXPECT_FALSE(queue.cancelled());
    queue.add(request(5, "result", 8));
    EXPECT_TRUE(queue.cancelled());
}

TEST(RequestQueueTest, TheNextRequestIsNotCancelledWithTheOneBefore) {
    RequestQueue queue;
    queue.add(request(1, "result", 7));
    queue.next();
    queue.add(request(2, "result", 8));
    EXPECT_EQ(queue.next()->request.id, 2U);
    EXPECT_FALSE(queue.cancelled());
}

TEST(RequestQueueTest, TheLastOfManyIsTheOneThatIsTaken) {
    RequestQueue queue;
    std::size_t overtaken = 0;
    for (std::uint64_t serial = 1; serial <= 100; ++serial)
        overtaken += queue.add(request(serial, "result", static_cast<std::int64_t>(serial))).size();
    EXPECT_EQ(overtaken, 99U);
    EXPECT_EQ(queue.next()->request.id, 100U);
}

TEST(RequestQueueTest, TheEndCancelsAndAnswersWhoWaits) {
    RequestQueue queue;
    queue.add(request(1, "", 0));
    queue.next();
    queue.end();
    EXPECT_TRUE(queue.cancelled());
    EXPECT_FALSE(queue.next().has_value());
}

}  // namespace
}  // namespace perch::test
