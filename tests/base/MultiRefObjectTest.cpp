#include "zefcore/base/AutoRefUnref.h"
#include "zefcore/base/AutoUnref.h"
#include "zefcore/base/CountedPtrBase.h"
#include "zefcore/base/MultiRefObject.h"

#include <gtest/gtest.h>

#include <climits>

namespace {
int g_live = 0;       // objects built minus objects destroyed
int g_destroyed = 0;  // destructor calls

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
    { Holder h0(nullptr, Holder::e_noDelete), h1(nullptr, Holder::e_delete), h2(nullptr, Holder::e_autoDelete); }
    Counted *a = new Counted;
    for (auto mode : {Holder::e_noDelete, Holder::e_autoDelete}) {  // auto on count 0: no delete
        Holder h(a, mode);
        EXPECT_EQ(a->count(), 1);
    }
    EXPECT_EQ(a->count(), 0);
    { Holder h(a, static_cast<typename Holder::e_deleteMode>(7)); }  // unknown mode: never drops
    ASSERT_EQ(g_destroyed, 0);
    a->ref();
    EXPECT_EQ(a->count(), 2);
    { Holder h(a, Holder::e_autoDelete); }  // count 2: resolves to e_delete
    EXPECT_EQ(a->count(), 2);
    {
        Holder h(a, Holder::e_autoDelete);
        a->unref();
        a->unref();  // the other owners leave inside the scope
        EXPECT_EQ(g_destroyed, 0);
    }
    EXPECT_EQ(g_destroyed, 1);
    Counted *b = new Counted;
    {
        Holder h(b, Holder::e_delete);
        EXPECT_EQ(b->count(), 1);
    }
    EXPECT_EQ(g_destroyed, 2);
    EXPECT_EQ(g_live, 0);
}
} // namespace

TEST(MultiRefObject, CountStartsAtZeroAndOnlyExactZeroDeletes) {
    g_destroyed = 0;
    Counted *a = new Counted;
    EXPECT_EQ(a->count(), 0);
    a->ref();
    a->unref();
    EXPECT_EQ(g_destroyed, 1);

    Counted *b = new Counted;
    b->ref();
    b->unrefNoDelete();
    b->ref();
    b->deleteIfNotRef();  // count 1: nothing
    EXPECT_EQ(b->count(), 1);
    b->unrefNoDelete();
    b->deleteIfNotRef();
    EXPECT_EQ(g_destroyed, 2);

    Counted *c = new Counted;
    c->unref();  // 0 -> -1: below zero never deletes
    c->unrefNoDelete();
    c->unref();
    c->deleteIfNotRef();
    EXPECT_EQ(c->count(), -3);
    c->setCount(INT_MAX);
    c->ref();  // wraps, no overflow
    EXPECT_EQ(c->count(), INT_MIN);
    c->unrefNoDelete();
    EXPECT_EQ(c->count(), INT_MAX);
    EXPECT_EQ(g_destroyed, 2);
    c->setCount(1);
    c->unref();
    EXPECT_EQ(g_live, 0);
}

TEST(MultiRefObject, CopyAndAssignmentCarryTheCount) {
    Counted a, target, fresh;
    a.setCount(3);
    EXPECT_EQ(Counted(a).count(), 3);
    target.setCount(2);
    EXPECT_EQ(&(target = fresh), &target);
    EXPECT_EQ(target.count(), 0);
}

TEST(MultiRefObject, HoldersTakeAndDropOneReference) {
    checkReferenceTakingHolder<AutoRefUnref>();
    checkReferenceTakingHolder<MultiRefObject::AutoRefUnref>();
}

TEST(MultiRefObject, AutoUnrefAdoptsTheCallersReference) {
    g_destroyed = 0;
    Counted *a = new Counted;
    a->ref();
    {
        AutoUnref h(a, AutoUnref::e_delete);
        EXPECT_EQ(a->count(), 1);
    }
    EXPECT_EQ(g_destroyed, 1);
    Counted *b = new Counted;
    { AutoUnref h(b, AutoUnref::e_autoDelete); }  // count 0: resolves to e_noDelete
    EXPECT_EQ(b->count(), -1);
    b->setCount(1);
    { AutoUnref h(b, static_cast<AutoUnref::e_deleteMode>(7)); }  // unknown mode: nothing
    ASSERT_EQ(g_destroyed, 1);
    b->ref();
    {
        AutoUnref h(b, AutoUnref::e_autoDelete);  // count 2: resolves to e_delete
        b->unref();
    }
    EXPECT_EQ(g_destroyed, 2);
    { AutoUnref h(nullptr, AutoUnref::e_delete); }
    EXPECT_EQ(g_live, 0);
}

TEST(MultiRefObject, CountedPtrBaseIgnoresNull) {
    g_destroyed = 0;
    TestPtr ptr;
    ptr.take(nullptr);
    ptr.drop(nullptr);
    Counted *a = new Counted;
    ptr.take(a);
    ptr.take(a);
    ptr.drop(a);
    EXPECT_EQ(g_destroyed, 0);
    ptr.drop(a);
    EXPECT_EQ(g_live, 0);
}
