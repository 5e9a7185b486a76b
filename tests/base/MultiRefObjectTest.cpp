// Reference counts and the holders, checked by counting objects built and destroyed.
#include "zefcore/base/MultiRefObject.h"
#include "zefcore/base/AutoRefUnref.h"
#include "zefcore/base/AutoUnref.h"
#include "zefcore/base/CountedPtrBase.h"
#include "zefcore/base/ZEFArray.h"

#include <gtest/gtest.h>

#include <climits>

namespace {
int g_live = 0, g_destroyed = 0; // objects built minus destroyed; destructor calls

class Counted : public MultiRefObject {
public:
    Counted() { ++g_live; }
    Counted(const Counted &other) : MultiRefObject(other) { ++g_live; }
    Counted &operator=(const Counted &other) = default;
    ~Counted() override { --g_live, ++g_destroyed; }
    int count() const { return m_refCount; }
    void setCount(int count) { m_refCount = count; }
};
struct TestPtr : CountedPtrBase {
    using CountedPtrBase::ref, CountedPtrBase::unref;
};

// Every mode (7: unknown) on counts around zero, with or without another owner leaving
// inside the scope. e_autoDelete resolves from the count read before the holder's own
// reference; only e_delete may delete, and only on reaching exactly zero.
template <class Holder>
void checkHolder(int takes) {
    { Holder h(nullptr, Holder::e_delete); }
    for (int mode : {0, 1, 2, 7})
        for (int count : {-1, 0, 1, 2})
            for (int drop : {0, 1}) {
                g_destroyed = 0;
                Counted *a = new Counted;
                a->setCount(count);
                const int resolved = mode == 2 ? (count != 0 ? 1 : 0) : mode;
                {
                    Holder h(a, static_cast<typename Holder::e_deleteMode>(mode));
                    EXPECT_EQ(a->count(), count + takes);
                    drop ? a->unrefNoDelete() : void();
                }
                const int left = count + takes - drop - (resolved < 2);
                const bool deleted = resolved == 1 && left == 0;
                EXPECT_EQ(g_destroyed, int(deleted)) << mode << " " << count << " " << drop;
                if (!deleted && g_destroyed == 0) { // never touch a deleted object
                    EXPECT_EQ(a->count(), left) << mode << " " << count << " " << drop;
                    delete a;
                }
            }
    EXPECT_EQ(g_live, 0);
}
} // namespace

// ref, unref, unrefNoDelete, deleteIfNotRef, then ref and unref through a counted pointer
// (which ignores null), on counts around zero and at the wrap.
TEST(MultiRefObject, OnlyExactZeroDeletesAndCopiesCarryTheCount) {
    TestPtr ptr;
    ptr.ref(nullptr), ptr.unref(nullptr);
    for (int count : {-1, 0, 1, 2, INT_MAX, INT_MIN})
        for (int op = 0; op < 6; ++op) {
            g_destroyed = 0;
            Counted *a = new Counted;
            a->setCount(count);
            op == 0   ? a->ref()
            : op == 1 ? a->unref()
            : op == 2 ? a->unrefNoDelete()
            : op == 3 ? a->deleteIfNotRef()
            : op == 4 ? ptr.ref(a)
                      : ptr.unref(a);
            const int left = int(unsigned(count) + (op % 4 == 0 ? 1u : op == 3 ? 0u : ~0u));
            const bool deleted = (op & 1) && left == 0;
            EXPECT_EQ(g_destroyed, int(deleted)) << count << " " << op;
            if (!deleted) {
                EXPECT_EQ(a->count(), left) << count << " " << op;
                delete a;
            }
        }
    Counted c, target;
    c.setCount(3);
    Counted copy(c);
    EXPECT_EQ(copy.count(), 3);
    copy = target;
    EXPECT_EQ(copy.count(), 0);
    ZEFArray<Counted *> owned; // deletePtrArray skips nulls and keeps the size
    for (Counted *p : {new Counted, static_cast<Counted *>(nullptr), new Counted})
        owned.push_back(p);
    deletePtrArray(owned);
    EXPECT_TRUE(g_live == 3 && owned.size() == 3);
}

TEST(MultiRefObject, HoldersTakeOrAdoptOneReference) {
    checkHolder<AutoRefUnref>(1);
    checkHolder<MultiRefObject::AutoRefUnref>(1);
    checkHolder<AutoUnref>(0); // adopts the caller's reference
}
