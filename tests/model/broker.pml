/* The broker's side (pipe.pml). */


#define Kept(n) (kept[n] != 0)
#define Unacknowledged \
    (Kept(0) + Kept(1) + Kept(2) + Kept(3) + Kept(4) + Kept(5) + Kept(6) + Kept(7) + Kept(8) + Kept(9) + Kept(10) + Kept(11))
#ifdef SHARE_UNTIL_ACKNOWLEDGED
#define ReadsSender (Unacknowledged < SHARE)
#else
#define ReadsSender (deliveryNext - deliveryToWrite < SHARE)
#endif

inline Queue(number) {
    assert(deliveryNext < DELIVERIES);
    kept[deliveryNext] = number + 1;
    deliveryNext++;
}

/* The client's hello: first, received in a, b. */
inline Greet(who) {
    c = (record[who] != kNobody); /* known */
    if
    :: !c && who == SENDER -> counted = a
    :: else
    fi;
    if
    :: who == RECEIVER ->
#ifdef OLD_HELLO_BELIEVED
        deliveryNext = (c -> deliveryNext : b);
#else
        deliveryNext = (b > deliveryNext -> b : deliveryNext);
#endif
        deliveryToWrite = b
    :: else
    fi;
#ifndef ACKNOWLEDGED_ONCE
    if
    :: who == SENDER -> /* all that is neither outstanding nor waits */
        toTell = Below(counted) & ~Below(a) & ~waiting;
        i = 0;
        do
        :: i < DELIVERIES ->
            if
            :: kept[i] -> toTell = toTell & ~Bit(kept[i] - 1)
            :: else
            fi;
            i++
        :: else -> break
        od
    :: else
    fi;
#endif
    record[who] = kOpen;
}

#ifdef DELIVERIES_COUNTED_PER_BROKER
#define FirstDelivery(who) b = ((record[who] != kNobody) -> b : 0) /* a broker that does not know the life begins at 0 */
#else
#define FirstDelivery(who)
#endif

/* Routes in a. */
inline Announce() {
    announced = a;
    m = 0;
    do
    :: m < MESSAGES ->
        if
        :: (waiting & Bit(m)) && (announced & Bit(RouteOf(m))) -> waiting = waiting & ~Bit(m); Queue(m)
        :: else
        fi;
        m++
    :: else -> break
    od;
}

/* The message a. */
inline TakeMessage() {
#ifndef ANONYMOUS
#if !defined(SKIP_IS_ACKNOWLEDGEMENT) && !defined(WITHOUT_SENDING_AGAIN)
    Expect(miscounted, a == counted);
#endif
    counted++;
#endif
    if
    :: announced & Bit(RouteOf(a)) -> Queue(a)
    :: else -> waiting = waiting | Bit(a)
    fi;
}

/* The set a of deliveries is handled. */
inline Acknowledge() {
    i = 0;
    do
    :: i < DELIVERIES ->
        if
        :: kept[i] && (a & Bit(i)) ->
#ifndef ANONYMOUS
            toTell = (record[SENDER] == kOpen -> toTell | Bit(kept[i] - 1) : toTell);
#endif
            kept[i] = 0
        :: else
        fi;
        i++
    :: else -> break
    od;
}

/* A frame that is no hello. */
inline Obey() {
    if
    :: frame == kAnnounce -> Announce()
    :: frame == kMessage -> TakeMessage()
    :: frame == kSkip -> Expect(miscounted, a == counted); counted = b
    :: else ->
        Acknowledge();
#ifdef SKIP_IS_ACKNOWLEDGEMENT
        if
        :: a & Bit(counted) -> counted++
        :: else
        fi
#endif
    fi;
}

inline ReadUp(who) {
    up[who]?frame, a, b, c;
    printf("broker reads from %d %e %d %d %d\n", who, frame, a, b, c);
    if
    :: frame == kHello ->
#ifndef OLD_CONNECTION_READ_ON
        if
        :: oldPeer[who] == kOpen -> CloseOld(who) /* whatever lies in it */
        :: else
        fi;
#endif
        FirstDelivery(who);
        Greet(who);
        peer[who] = kOpen;
        if
        :: connected[who] && whole[who] -> down[who]!kHello, (who == RECEIVER -> b : 0), (who == SENDER -> counted : 0), c
        :: else
        fi
    :: else -> peer[who] = kOpen; Obey()
    fi;
}

/* A hello that lay in the connection that the client has left: it seems to be the newer one. */
inline ReadOld(who) {
    old[who]?frame, a, b, c;
    printf("broker reads from the old connection of %d %e %d %d %d\n", who, frame, a, b, c);
    if
    :: frame == kHello ->
        if
        :: peer[who] == kOpen -> ClosePeer(who)
        :: else
        fi;
        FirstDelivery(who);
        Greet(who);
        oldPeer[who] = kOpen
    :: else -> oldPeer[who] = kOpen; Obey()
    fi;
}

inline ClosePeer(who) {
    Drain(up[who]);
    peer[who] = kNobody;
}

inline CloseOld(who) {
    Drain(old[who]);
    oldPeer[who] = kNobody;
}

/* The life is kept for the grace time, if no other connection has it. */
inline Miss(who, other) {
    if
    :: record[who] == kOpen && other != kOpen ->
        printf("broker misses %d\n", who);
        record[who] = kAbsent;
        toTell = (who == SENDER -> 0 : toTell)
    :: else
    fi;
}

inline ForgetSender() {
    record[SENDER] = kNobody;
    counted = 0;
    toTell = 0;
#ifdef TAKEN_FORGOTTEN
    taken = 0;
#endif
}

inline ForgetReceiver() {
    record[RECEIVER] = kNobody;
    announced = 0;
    deliveryNext = 0;
    deliveryToWrite = 0;
    i = 0;
    do
    :: i < DELIVERIES -> kept[i] = 0; i++
    :: else -> break
    od;
}

/* The broker notices that a connection has ended, reads, and writes. */
#define BrokerOf(who) \
    :: d_step { peer[who] != kNobody && !(connected[who] && whole[who]) -> Miss(who, oldPeer[who]); ClosePeer(who); skip } \
    :: d_step { oldPeer[who] != kNobody -> Miss(who, peer[who]); CloseOld(who); skip } \
    :: d_step { peer[who] != kNobody && (peer[who] != kOpen || who != SENDER || ReadsSender) && nempty(up[who]) && \
                nfull(down[who]) -> ReadUp(who); skip } \
    :: d_step { oldPeer[who] != kNobody && nempty(old[who]) -> ReadOld(who); skip } \
    :: d_step { peer[who] == kOpen && who == RECEIVER && deliveryToWrite < deliveryNext && MayWriteDown(who) -> \
        down[who]!kDelivery, deliveryToWrite, kept[deliveryToWrite] - 1, 0; \
        deliveryToWrite++ } \
    :: d_step { peer[who] == kOpen && who == SENDER && toTell && MayWriteDown(who) -> \
        down[who]!kAcknowledge, toTell, 0, 0; \
        toTell = 0 }

proctype Broker() {
end:
    do
    BrokerOf(SENDER)
#if RECEIVER != SENDER
    BrokerOf(RECEIVER)
#endif
    :: d_step { !brokerLives -> brokerLives = true }
    od
}
