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

/* The client's introduction: first, received in a, b. Goes on with what the broker keeps of that life, if it keeps anything;
   that may be older than what the client says. */
inline Greet(who, isLatest) {
    c = (record[who] != kNobody); /* known */
    if
    :: who == RECEIVER && (!c || b > deliveryNext) -> c = false; ForgetReceiver(); deliveryNext = b
    :: else
    fi;
    if
#ifdef LOST_SKIP_NOT_MADE_UP
    :: who == SENDER && !c -> counted = a
#else
    :: who == SENDER && (!c || a > counted) -> counted = a
#endif
    :: else
    fi;
    if
    :: who == RECEIVER && deliveriesFrom > b -> b = deliveriesFrom /* the others were dropped */
    :: else
    fi;
    deliveryToWrite = (who == RECEIVER -> b : deliveryToWrite);
    isOfLatest[who] = isLatest;
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

/* A frame that is no introduction. */
inline Obey() {
    if
    :: frame == kAnnounce -> Announce()
    :: frame == kMessage -> TakeMessage()
    :: frame == kSkip -> counted = counted + a
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
    :: frame == kIntroduction ->
#ifndef OLD_CONNECTION_READ_ON
        if
        :: oldPeer[who] == kOpen -> CloseOld(who) /* whatever lies in it */
        :: else
        fi;
#endif
        FirstDelivery(who);
        Greet(who, true);
        peer[who] = kOpen;
        if
        :: connected[who] && whole[who] ->
            down[who]!kIntroduction, (who == RECEIVER -> b : 0), (who == SENDER -> counted : 0), c
        :: else
        fi
    :: else -> peer[who] = kOpen; Obey()
    fi;
}

/* An introduction from the connection that the client has left counts, if the broker does not know the life better. */
inline ReadOld(who) {
    old[who]?frame, a, b, c;
    printf("broker reads from the old connection of %d %e %d %d %d\n", who, frame, a, b, c);
    if
    :: frame == kIntroduction ->
        if
        :: record[who] != kNobody && isOfLatest[who] -> CloseOld(who)
        :: else ->
            FirstDelivery(who);
            Greet(who, false);
            oldPeer[who] = kOpen
        fi
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
}

/* What is kept for the receiver is dropped and so done, and it is a receiver no more until it announces again. */
inline GiveUpReceiver() {
    i = 0;
    do
    :: i < DELIVERIES ->
        if
        :: kept[i] ->
            dropped = dropped | Bit(kept[i] - 1);
            toTell = (record[SENDER] == kOpen -> toTell | Bit(kept[i] - 1) : toTell);
            kept[i] = 0
        :: else
        fi;
        i++
    :: else -> break
    od;
    announced = 0;
    deliveriesFrom = deliveryNext;
    deliveryToWrite = deliveryNext;
    ClosePeer(RECEIVER);
    Miss(RECEIVER, oldPeer[RECEIVER]);
}

inline ForgetReceiver() {
    record[RECEIVER] = kNobody;
    announced = 0;
    deliveriesFrom = 0;
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
