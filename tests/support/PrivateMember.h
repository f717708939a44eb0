#pragma once

/*!
    Access to a private data member from a test, without a trace in the class under test.

    The language lets an explicit template instantiation name private members; the friend function
    that it defines hands the member pointer out. At namespace scope of the test:

        struct LastPid : PrivateMember<LastPid, qint64, OverviewForm> { };
        template struct ExposePrivateMember<LastPid, &OverviewForm::lastPid>;

    and then read or write it with LastPid::of(form).
*/
template<typename Tag, typename Value, typename Class>
struct PrivateMember
{
    using Pointer = Value Class::*;

    // One plain function for each Tag, not a template: just what GCC warns of here.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-template-friend"
#endif
    friend constexpr Pointer privateMemberPointer(Tag);
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

    static Value &of(Class &object)
    {
        return object.*privateMemberPointer(Tag());
    }
    static const Value &of(const Class &object)
    {
        return object.*privateMemberPointer(Tag());
    }
};

template<typename Tag, typename Tag::Pointer MemberPointer>
struct ExposePrivateMember
{
    friend constexpr typename Tag::Pointer privateMemberPointer(Tag) { return MemberPointer; }
};
