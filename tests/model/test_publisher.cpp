#include "DataMaker.h"
#include "Listener.h"
#include "ModelGuard.h"
#include "Space.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

using namespace VARNO;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class PublisherTest : public testing::Test {
protected:
    ModelGuard guard;
    Publisher &changes = Space::instance()->Changes();
};

/// Ends the life of another listener when it is told of something.
class Killer : public Subscriber {
public:
    explicit Killer(Publisher &changes, std::unique_ptr<Listener> &victim)
        : m_changes(changes)
        , m_victim(victim) {
        m_changes.Subscribe(this);
    }
    ~Killer() override { m_changes.Unsubscribe(this); }

    void Notify(const DataPointBase &) override { m_victim.reset(); }

private:
    Publisher &m_changes;
    std::unique_ptr<Listener> &m_victim;
};

/// Subscribes another listener when it is told of something.
class Inviter : public Listener {
public:
    void Notify(const DataPointBase &notice) override {
        Listener::Notify(notice);
        guest = std::make_unique<Listener>();
    }

    std::unique_ptr<Listener> guest;
};

} // namespace

TEST_F(PublisherTest, TellsEverySubscriber) {
    Listener first, second;
    Compound *clump = DataMaker::makeClump("clump");
    for (const Listener *listener : {&first, &second}) {
        ASSERT_EQ(listener->notices.size(), 1u);
        EXPECT_THAT(listener->notices[0].nodes, ElementsAre(clump));
    }
}

TEST_F(PublisherTest, TellsNobodyWhoHasLeft) {
    Listener listener;
    changes.Unsubscribe(&listener);
    DataMaker::makeClump("clump");
    EXPECT_THAT(listener.notices, IsEmpty());
}

TEST_F(PublisherTest, SparesTheOriginOfABatch) {
    Listener origin, other;
    DataPointBase batch(&origin, Publisher::Addition);
    ASSERT_TRUE(changes.Open(&batch));
    DataMaker::makeClump("clump");
    changes.Close(&batch);
    EXPECT_THAT(origin.notices, IsEmpty());
    EXPECT_EQ(other.notices.size(), 1u);
}

TEST_F(PublisherTest, HoldsOneBatchOpenAtATime) {
    DataPointBase first(nullptr, Publisher::Addition), second(nullptr, Publisher::Addition);
    EXPECT_TRUE(changes.Open(&first));
    EXPECT_FALSE(changes.Open(&second));
    changes.Close(&second);
    EXPECT_FALSE(changes.Open(&second)) << "closing a batch that is not open has closed the open one";
    changes.Close(&first);
    EXPECT_TRUE(changes.Open(&second));
    changes.Close(&second);
}

TEST_F(PublisherTest, DoesNotTellASubscriberThatDiedDuringTheSameNotice) {
    std::unique_ptr<Listener> victim;
    Killer killer(changes, victim);
    victim = std::make_unique<Listener>();
    DataMaker::makeClump("clump");
    EXPECT_FALSE(victim);
}

TEST_F(PublisherTest, TellsASubscriberThatJoinsDuringANoticeFromTheNextOneOn) {
    Inviter inviter;
    DataMaker::makeClump("first");
    ASSERT_TRUE(inviter.guest);
    EXPECT_THAT(inviter.guest->notices, IsEmpty());
}

TEST_F(PublisherTest, LetsABatchInWhileItTellsOfAnother) {
    class Asker : public Listener {
    public:
        void Notify(const DataPointBase &) override {
            DataPointBase batch(nullptr, Publisher::Addition);
            let = Space::instance()->Changes().Open(&batch);
            Space::instance()->Changes().Close(&batch);
        }
        bool let = false;
    } asker;
    DataPointBase batch(nullptr, Publisher::Addition);
    ASSERT_TRUE(changes.Open(&batch));
    DataMaker::makeClump("clump");
    changes.Close(&batch);
    EXPECT_TRUE(asker.let);
}
