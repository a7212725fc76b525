/* What goes wrong (pipe.pml). */


inline ReceiverDies() {
    Drain(down[RECEIVER]);
    state[RECEIVER] = kConnecting;
    connected[RECEIVER] = false;
    whole[RECEIVER] = false;
    mustAnnounce = false;
    received = 0;
    taken = 0;
    handled = 0;
    toAcknowledge = 0;
    i = 0;
    do
    :: i < DELIVERIES -> queued[i] = 0; i++
    :: else -> break
    od;
}

inline Kill() {
    Wrong;
    printf("the broker dies\n");
    deaths++;
    brokerLives = false;
#ifdef DELIVERIES_COUNTED_PER_BROKER
    life++;
#endif
    ClosePeer(SENDER);
    CloseOld(SENDER);
    ForgetSender();
    ForgetReceiver();
    waiting = 0;
#if RECEIVER != SENDER
    ClosePeer(RECEIVER);
    CloseOld(RECEIVER);
    ReceiverDies();
#endif
}

#define MayCut(who) (cuts < MAX_CUTS && connected[who] && whole[who] && peer[who] != kNobody)

/* A fault may come, or come no more. */
proctype Faults() {
end:
    do
    :: d_step { brokerLives && deaths < MAX_DEATHS -> Kill(); skip }
    :: d_step { deaths < MAX_DEATHS -> deaths = MAX_DEATHS }
    :: d_step { MayCut(SENDER) -> printf("the connection of %d is cut\n", SENDER); Wrong; cuts++; whole[SENDER] = false }
#if RECEIVER != SENDER
    :: d_step { MayCut(RECEIVER) -> printf("the connection of %d is cut\n", RECEIVER); Wrong; cuts++; whole[RECEIVER] = false }
#endif
    :: d_step { cuts < MAX_CUTS -> cuts = MAX_CUTS }
    :: d_step { givenUp < MAX_GIVEN_UP && record[RECEIVER] != kNobody ->
        printf("the broker gives %d up\n", RECEIVER);
        givenUp++;
        GiveUpReceiver();
        skip }
    :: d_step { givenUp < MAX_GIVEN_UP -> givenUp = MAX_GIVEN_UP }
    :: d_step { forgotten < MAX_FORGOTTEN && record[SENDER] == kAbsent ->
        printf("the broker forgets %d\n", SENDER);
        forgotten++;
        ForgetSender();
        skip }
    :: d_step { forgotten < MAX_FORGOTTEN -> forgotten = MAX_FORGOTTEN }
    od
}
