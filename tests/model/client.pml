/* The client's side (pipe.pml). */


inline Connect(who) {
    if
    :: peer[who] != kNobody -> /* the broker has not noticed that the client has left */
        oldPeer[who] = peer[who];
        do
        :: len(up[who]) > 0 -> up[who]?frame, a, b, c; old[who]!frame, a, b, c
        :: else -> break
        od
    :: else -> Drain(up[who])
    fi;
    printf("client %d connects\n", who);
    connected[who] = true;
    whole[who] = true;
    isOfLatest[who] = false;
    peer[who] = kGreeting;
#ifdef ANONYMOUS
    if
    :: who == SENDER -> state[who] = kOpen
    :: else -> IntroduceItself(who)
    fi;
#else
    IntroduceItself(who);
#endif
}

inline IntroduceItself(who) {
    first = 0;
    if
    :: who == SENDER ->
#ifdef WITHOUT_SENDING_AGAIN
        first = next
#else
        do
        :: first < MESSAGES && (done & Bit(first)) -> first++
        :: else -> break
        od
#endif
    :: else
    fi;
#ifdef DELIVERIES_COUNTED_PER_BROKER
    up[who]!kIntroduction, first, received, known;
#else
    up[who]!kIntroduction, first, (who == RECEIVER -> received : 0), 0;
#endif
    state[who] = kGreeting;
}

inline LoseConnection(who) {
    printf("client %d has lost its connection\n", who);
    Drain(down[who]);
    connected[who] = false;
    whole[who] = false;
    state[who] = kUnreachable;
    if
    :: who == RECEIVER -> mustAnnounce = false;
#ifndef ACKNOWLEDGED_ONCE
        toAcknowledge = 0
#endif
    :: else
    fi;
    if
    :: who == SENDER ->
#if !defined(WITHOUT_SENDING_AGAIN) && !defined(ANONYMOUS)
        next = 0
#endif
    :: else
    fi;
}

/* The broker's introduction: first, received in a, b; with DELIVERIES_COUNTED_PER_BROKER whether it knows the client in c. */
inline Open(who) {
    if
    :: who == RECEIVER ->
        mustAnnounce = true;
#ifdef DELIVERIES_COUNTED_PER_BROKER
        if
        :: !c || known != life -> received = a
        :: else
        fi;
        known = life;
#else
        Expect(miscounted, a >= received);
#ifndef GIVEN_UP_NOT_COUNTED
        received = a; /* what lies between was dropped */
#endif
#endif
#ifndef ACKNOWLEDGED_ONCE
        toAcknowledge = Below(received);
        i = 0;
        do
        :: i < DELIVERIES ->
            if
            :: queued[i] -> toAcknowledge = toAcknowledge & ~Bit(i)
            :: else
            fi;
            i++
        :: else -> break
        od
#endif
    :: else
    fi;
    if
    :: who == SENDER ->
#ifndef WITHOUT_SENDING_AGAIN
        Expect(miscounted, b >= MESSAGES || (Below(b + 1) & ~done) != 0); /* not before the oldest that is not done */
        next = b
#endif
    :: else
    fi;
    state[who] = kOpen;
}

/* Delivery a of the message b. */
inline Take() {
#ifndef DELIVERIES_COUNTED_PER_BROKER
    Expect(miscounted, a == received);
#endif
    received++;
    if
#if defined(RECEIVER_IN_SENDER) && !defined(WITHOUT_DEDUPLICATION)
    :: taken & Bit(b) -> toAcknowledge = toAcknowledge | Bit(a) /* sender and receiver die together */
#endif
    :: else ->
        taken = taken | Bit(b);
        queued[a] = b + 1;
#ifdef ACKNOWLEDGED_BEFORE_HANDLED
        toAcknowledge = toAcknowledge | Bit(a)
#endif
    fi;
}

/* The callbacks of the oldest queued message of this route return. */
inline Handle(route) {
    m = 0;
    do
    :: !queued[m] || RouteOf(queued[m] - 1) != route -> m++
    :: else -> break
    od;
    m = queued[m] - 1;
    Expect(handledTwice, !(handled & Bit(m)));
    i = m + 2;
    do
    :: i < MESSAGES ->
#ifdef ANONYMOUS
        Expect(outOfOrder, wrong || !(handled & Bit(i))); /* each connection of an anonymous client is a sender of its own */
#else
        Expect(outOfOrder, !(handled & Bit(i)) || (dropped & Bit(m)));
#endif
        i = i + 2
    :: else -> break
    od;
    printf("client %d has handled message %d\n", RECEIVER, m);
    handled = handled | Bit(m);
    everHandled = everHandled | Bit(m);
    i = 0;
    do
    :: i < DELIVERIES ->
        if
        :: queued[i] == m + 1 ->
            queued[i] = 0;
            toAcknowledge = (state[RECEIVER] == kOpen -> toAcknowledge | Bit(i) : toAcknowledge);
            i = DELIVERIES - 1
        :: else
        fi;
        i++
    :: else -> break
    od;
}

/* Writes the next message, or that it is done already. */
inline SendNext() {
    printf("client %d writes message %d, or a skip\n", SENDER, next);
    if
    :: done & Bit(next) ->
#ifdef SKIP_IS_ACKNOWLEDGEMENT
        up[SENDER]!kAcknowledge, Bit(next), 0, 0
#else
        up[SENDER]!kSkip, 1, 0, 0
#endif
    :: else -> up[SENDER]!kMessage, next, 0, 0
    fi;
    next++;
}

inline ReadDown(who) {
    down[who]?frame, a, b, c;
    printf("client %d reads %e %d %d %d\n", who, frame, a, b, c);
    if
    :: frame == kIntroduction -> Expect(disorder, state[who] == kGreeting); Open(who)
    :: frame == kAcknowledge ->
        Expect(disorder, who == SENDER && state[who] == kOpen);
#if defined(RECEIVER_IN_SENDER) && !defined(SKIP_IS_ACKNOWLEDGEMENT) && !defined(DELIVERIES_COUNTED_PER_BROKER)
        Expect(doneUnhandled, (a & ~(taken | dropped)) == 0);
#else
        Expect(doneUnhandled, (a & ~(everHandled | dropped)) == 0);
#endif
        done = done | a
    :: else -> Expect(disorder, frame == kDelivery && who == RECEIVER && state[who] == kOpen); Take()
    fi;
}

#define Queued(n) (queued[n] != 0)
#define QueuedOf(n, route) (queued[n] && RouteOf(queued[n] - 1) == route)
#define ReadsPipe(who) \
    (who != RECEIVER || Queued(0) + Queued(1) + Queued(2) + Queued(3) + Queued(4) + Queued(5) + Queued(6) + Queued(7) + \
                        Queued(8) + Queued(9) + Queued(10) + Queued(11) < QUEUE)
#define Waits(route) \
    (QueuedOf(0, route) || QueuedOf(1, route) || QueuedOf(2, route) || QueuedOf(3, route) || QueuedOf(4, route) || \
     QueuedOf(5, route) || QueuedOf(6, route) || QueuedOf(7, route) || QueuedOf(8, route) || QueuedOf(9, route) || \
     QueuedOf(10, route) || QueuedOf(11, route))

proctype Client(byte who) {
end:
    do
    :: d_step { (state[who] == kConnecting || state[who] == kUnreachable) && brokerLives && oldPeer[who] == kNobody ->
        Connect(who); skip }
    :: d_step { connected[who] && (!whole[who] || peer[who] == kNobody) -> LoseConnection(who); skip }
    :: d_step { connected[who] && ReadsPipe(who) && nempty(down[who]) -> ReadDown(who); skip }
    /* the receiver's part */
    :: d_step { who == RECEIVER && Waits(0) -> Handle(0); skip }
    :: d_step { who == RECEIVER && Waits(1) -> Handle(1); skip }
    :: d_step { who == RECEIVER && routes != BOTH_ROUTES -> routes = BOTH_ROUTES; mustAnnounce = (state[who] == kOpen) }
    :: d_step { who == RECEIVER && state[who] == kOpen && mustAnnounce && MayWriteUp(who) ->
        printf("client %d writes kAnnounce %d\n", who, routes);
        up[who]!kAnnounce, routes, 0, 0;
        mustAnnounce = false }
    :: d_step { who == RECEIVER && state[who] == kOpen && toAcknowledge && MayWriteUp(who) ->
        printf("client %d writes kAcknowledge %d\n", who, toAcknowledge);
        up[who]!kAcknowledge, toAcknowledge, 0, 0;
        toAcknowledge = 0 }
    /* the sender's part */
    :: d_step { who == SENDER && state[who] == kOpen && next < MESSAGES && MayWriteUp(who) &&
                !(RECEIVER == SENDER && mustAnnounce) -> SendNext(); skip }
    od
}
