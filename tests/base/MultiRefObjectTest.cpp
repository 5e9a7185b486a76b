#include "zefcore/base/MultiRefObject.h"
#include "zefcore/base/AutoRefUnref.h"
#include "zefcore/base/AutoUnref.h"
#include "zefcore/base/CountedPtrBase.h"

#include <gtest/gtest.h>

#include <climits>

namespace {
int g_live = 0;      // objects built minus objects destroyed
int g_destroyed = 0; // destructor calls

class Counted : public MultiRefObject {
public:
    Counted() { ++g_live; }
    Counted(const Counted &other) : MultiRefObject(other) { ++g_live; }
    Counted &operator=(const Counted &other) = default;
    ~Counted() override { --g_live, ++g_destroyed; }
    int count() const { return m_refCount; }
    void setCount(int count) { m_refCount = count; }
};

class TestPtr : public CountedPtrBase {
public:
    void take(const MultiRefObject *object) { ref(object); }
    void drop(const MultiRefObject *object) { unref(object); }
};

// The cases shared by the two holders that take a reference of their own.
template <class Holder>
void checkReferenceTakingHolder() {
    g_destroyed = 0;
    {
        Holder h0(nullptr, Holder::e_noDelete), h1(nullptr, Holder::e_delete),
            h2(nullptr, Holder::e_autoDelete);
    }
    Counted *a = new Counted;
    for (auto mode : {Holder::e_noDelete, Holder::e_autoDelete}) { // auto on count 0: no delete
        Holder h(a, mode);
        EXPECT_EQ(a->count(), 1);
    }
    { Holder h(a, static_cast<typename Holder::e_deleteMode>(7)); } // unknown mode: never drops
    EXPECT_EQ(a->count(), 1);
    { Holder h(a, Holder::e_autoDelete); } // count 1: resolves to e_delete
    EXPECT_EQ(a->count(), 1);
    {
        Holder h(a, Holder::e_autoDelete);
        a->unref(); // the other owner leaves inside the scope
        EXPECT_EQ(g_destroyed, 0);
    }
    EXPECT_EQ(g_destroyed, 1);
    Counted *b = new Counted;
    { Holder h(b, Holder::e_delete); }
    EXPECT_TRUE(g_destroyed == 2 && g_live == 0);
}
} // namespace

TEST(MultiRefObject, OnlyExactZeroDeletesAndCopiesCarryTheCount) {
    g_destroyed = 0;
    Counted *a = new Counted;
    EXPECT_EQ(a->count(), 0);
    a->ref();
    a->unref();
    EXPECT_EQ(g_destroyed, 1);
    Counted *b = new Counted;
    b->ref();
    b->deleteIfNotRef(); // count 1: nothing
    b->unrefNoDelete();
    EXPECT_EQ(g_destroyed, 1);
    b->deleteIfNotRef();
    EXPECT_EQ(g_destroyed, 2);

    Counted *c = new Counted;
    c->unref(); // 0 -> -1: below zero never deletes
    c->unref();
    c->deleteIfNotRef();
    EXPECT_TRUE(c->count() == -2 && g_destroyed == 2);
    c->setCount(INT_MAX);
    c->ref(); // wraps, no overflow
    EXPECT_EQ(c->count(), INT_MIN);
    c->unrefNoDelete();
    EXPECT_EQ(c->count(), INT_MAX);
    c->setCount(3);
    Counted copy(*c), target;
    EXPECT_EQ(copy.count(), 3);
    copy = target;
    EXPECT_EQ(copy.count(), 0);
    c->setCount(1);
    c->unref();
    EXPECT_EQ(g_live, 2);
}

TEST(MultiRefObject, HoldersTakeOrAdoptOneReference) {
    checkReferenceTakingHolder<AutoRefUnref>();
    checkReferenceTakingHolder<MultiRefObject::AutoRefUnref>();

    g_destroyed = 0; // AutoUnref adopts the caller's reference: no ref at construction
    Counted *a = new Counted;
    { AutoUnref h(a, AutoUnref::e_autoDelete); } // count 0: resolves to e_noDelete
    EXPECT_EQ(a->count(), -1);
    a->setCount(1);
    { AutoUnref h(a, static_cast<AutoUnref::e_deleteMode>(7)); } // unknown mode: nothing
    { AutoUnref h(nullptr, AutoUnref::e_delete); }
    a->ref();
    {
        AutoUnref h(a, AutoUnref::e_autoDelete); // count 2: resolves to e_delete
        EXPECT_EQ(a->count(), 2);
        a->unref();
        EXPECT_EQ(g_destroyed, 0);
    }
    EXPECT_EQ(g_destroyed, 1);

    TestPtr ptr; // the counted pointer base: null ignored, unref deletes at zero
    ptr.take(nullptr);
    ptr.drop(nullptr);
    Counted *b = new Counted;
    ptr.take(b);
    ptr.take(b);
    ptr.drop(b);
    EXPECT_EQ(b->count(), 1);
    ptr.drop(b);
    EXPECT_TRUE(g_destroyed == 2 && g_live == 0);
}
