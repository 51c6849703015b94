/* The life of one notification of one device at one reader: associate, arm, register, deliver, arm
 * again, disable, cancel, drain, join, close.
 *
 * Names follow the code; each inline function states which function of the library performs it. A step
 * that the library does under the registry's lock, or that Windows does at once, is atomic. Everything
 * else interleaves.
 *
 *   -DSTATUS_AT_DEQUEUE   Windows stores the final status of a request when its packet is dequeued,
 *                         otherwise when the request completes
 *   -DFAULT=NUMBER        a fault that the checks must find */

#ifndef FAULT
#define FAULT 0
#endif
#define FAULT_FREE_WHILE_SENT 1     /* a request leaves the registry although Windows owns it */
#define FAULT_CLOSE_WITHOUT_DRAIN 2 /* the port is closed with pending requests */
#define FAULT_ARM_WITHOUT_STATE 3   /* two threads arm the delivery at the same time */
#define FAULT_NO_ARMING_AGAIN 4     /* the reader does not arm the delivery after a notice */
#define FAULT_NO_WAKE_UP 5          /* the reader's thread is joined without a wake-up */
#define FAULT_DESTROY_EARLY 6       /* the notification is destroyed before the reader has ended */

#define DELIVERY 0
#define REGISTRATIONS 2  /* requests 1 and 2: the client enables the notification twice */
#define REQUESTS 3
#define NOTICES 2
#define WAKE_UP 255
#define NO_NOTICE 255

mtype = { idle, sent, dequeued }; /* tPortRegistry::tState */

typedef tRequest {
  /* Its entry in the registry. */
  bool isEntered;
  bool isRemoved;
  mtype state = idle;
  bool hasNotification;
  /* References besides the registry's: by the proxy or the notification, and by the reader. */
  bool isOwned;
  bool isRead;
  bool isFreed;
  /* As Windows sees it. */
  bool isPending;      /* the driver may write to it */
  bool isCompleted;    /* its packet is in the port */
  bool statusPending;  /* the mark in its OVERLAPPED */
  bool isCancelled;
  bool hasSucceeded;
  bool hasFile;
  byte notice = NO_NOTICE;
};
tRequest requests[REQUESTS];

chan port = [4] of { byte };
bool isPortOpen = true;
bool isReaderEnded;
bool isAssociated;
bool isNotificationKnown;     /* to the registry */
bool isNotificationDestroyed;
bool isEverythingReleased;

/* Of the driver. */
bool isRegistered;
byte registration;            /* the request that is pending while registered */
byte produced;
byte queuedFirst;             /* notices queuedFirst to produced - 1 are not delivered yet */

/* Of the client. */
byte received;
bool wasReceived[NOTICES];

/* ---- Memory ---- */

/* The end of a std::shared_ptr<tPortRequest>. */
inline freeUnused(request) {
  if
  :: !requests[request].isEntered && !requests[request].isOwned && !requests[request].isRead &&
     !requests[request].isFreed ->
     assert(!requests[request].isPending && !requests[request].isCompleted);
     requests[request].isFreed = true
  :: else
  fi
}

/* ---- tPortRegistry; every function is one step, under its lock ---- */

inline erase(request) {
  requests[request].isEntered = false;
  freeUnused(request)
}

inline markIdle(request) {
  atomic {
    if
    :: requests[request].isEntered ->
       requests[request].state = idle;
       if
       :: requests[request].isRemoved -> erase(request)
       :: else
       fi
    :: else
    fi
  }
}

inline removeRequest(request) {
  atomic {
    if
    :: requests[request].isEntered ->
       requests[request].isRemoved = true;
       if
       :: requests[request].state == idle || FAULT == FAULT_FREE_WHILE_SENT -> erase(request)
       :: else
       fi
    :: else
    fi
  }
}

/* resolve. Sets `known` if the packet belongs to a sent request. */
inline resolve(request, known) {
  atomic {
    known = requests[request].isEntered && requests[request].state == sent &&
            !requests[request].statusPending;
    if
    :: known ->
       requests[request].state = dequeued;
       requests[request].isRead = true
    :: else
    fi
  }
}

inline cancelEntry(request) {
  if
  :: requests[request].isEntered && requests[request].state == sent && requests[request].hasFile &&
     requests[request].isPending -> requests[request].isCancelled = true
  :: else
  fi
}

inline releaseRead(request) {
  atomic {
    requests[request].isRead = false;
    freeUnused(request)
  }
}

/* ---- Windows and the driver ---- */

/* The driver completes a request: its packet goes to the port. */
inline complete(request, success) {
  assert(requests[request].isPending && !requests[request].isFreed && isPortOpen);
  requests[request].isPending = false;
  requests[request].isCompleted = true;
  requests[request].hasSucceeded = success;
  requests[request].isCancelled = false;
#ifndef STATUS_AT_DEQUEUE
  requests[request].statusPending = false;
#endif
  port!request
}

/* DeviceIoControl on an OVERLAPPED whose completion goes to the port. The system may refuse, and leaves the
 * mark in the OVERLAPPED then. */
inline startRequest(request, isStarted) {
  atomic {
    assert(!requests[request].isPending && !requests[request].isCompleted &&
           !requests[request].isFreed);
    requests[request].statusPending = true;
    if
    :: requests[request].isPending = true; isStarted = true
    :: canRefuse -> canRefuse = false; isStarted = false
    fi
  }
}
bool canRefuse = true; /* one refusal in a run */

/* GetQueuedCompletionStatus for a packet that is not a wake-up. */
inline takeOver(request) {
  requests[request].isCompleted = false;
  requests[request].statusPending = false
}

/* Events occur, deliveries complete, cancellations take effect: each at any time. */
active proctype Driver() {
  byte cancelled;
end:
  do
  :: atomic { isRegistered && produced < NOTICES -> produced++ }
  :: atomic {
       queuedFirst < produced && requests[DELIVERY].isPending ->
       requests[DELIVERY].notice = queuedFirst;
       queuedFirst++;
       complete(DELIVERY, true)
     }
  :: atomic {
       requests[DELIVERY].isPending && requests[DELIVERY].isCancelled -> complete(DELIVERY, false)
     }
  :: atomic { requests[1].isPending && requests[1].isCancelled -> complete(1, false) }
  :: atomic { requests[2].isPending && requests[2].isCancelled -> complete(2, false) }
  od
}

/* ---- tDeviceInterfaceProxy ---- */

/* armDelivery, by the client and by the reader. */
inline armDelivery(isArming, isStarted) {
  atomic {
    isArming = requests[DELIVERY].isEntered &&
               (requests[DELIVERY].state == idle || FAULT == FAULT_ARM_WITHOUT_STATE);
    if
    :: isArming -> requests[DELIVERY].state = sent
    :: else
    fi
  }
  if
  :: isArming ->
     requests[DELIVERY].notice = NO_NOTICE;
     startRequest(DELIVERY, isStarted);
     if
     :: isStarted
     :: else -> markIdle(DELIVERY)
     fi
  :: else
  fi
}

/* createAssociation. */
inline associate() {
  if
  :: !isAssociated ->
     atomic {
       requests[DELIVERY].isEntered = true;
       requests[DELIVERY].isOwned = true;
       requests[DELIVERY].hasFile = true;
       isAssociated = true
     }
  :: else
  fi
}

/* ---- The reader's thread: tThreadedIONotificationReader::loop and wait ---- */

inline callBack() {
  assert(!isNotificationDestroyed)
}

/* readDelivery and readNotice. */
inline readDelivery() {
  notice = requests[DELIVERY].notice;
  markIdle(DELIVERY);
  if
  :: FAULT != FAULT_NO_ARMING_AGAIN -> armDelivery(isArming, isStarted)
  :: else
  fi;
  atomic {
    if
    :: isNotificationKnown ->
       callBack();
       assert(notice < NOTICES && !wasReceived[notice]);
       wasReceived[notice] = true;
       received++
    :: else
    fi
  }
}

active proctype Reader() {
  byte request;
  byte notice;
  bool known;
  bool isArming;
  bool isStarted;
  do
  :: atomic {
       port?request;
       if
       :: request != WAKE_UP -> takeOver(request)
       :: else
       fi
     }
     if
     :: request == WAKE_UP -> break
     :: else ->
        resolve(request, known);
        if
        :: known && requests[request].hasSucceeded && request == DELIVERY -> readDelivery()
        :: known && requests[request].hasSucceeded && request != DELIVERY ->
           /* endRegistration */
           markIdle(request);
           if
           :: requests[request].hasNotification -> callBack()
           :: else
           fi
        :: known && !requests[request].hasSucceeded -> markIdle(request) /* discard */
        :: else
        fi;
        if
        :: known -> releaseRead(request)
        :: else
        fi
     fi
  od;
  isReaderEnded = true
}

/* ---- The client: tIONotification, and the end of everything ---- */

/* registerAt. */
inline register() {
  atomic {
    /* prepare: a request of its own for each registration; the notification releases the last one. */
    if
    :: enabling > 1 ->
       requests[enabling - 1].isOwned = false;
       freeUnused(enabling - 1)
    :: else
    fi;
    requests[enabling].isEntered = true;
    requests[enabling].isOwned = true;
    requests[enabling].hasFile = true;
    requests[enabling].hasNotification = true;
    isNotificationKnown = true;
    requests[enabling].state = sent /* markSent */
  }
  atomic {
    startRequest(enabling, isEnabled);
    if
    :: isEnabled -> isRegistered = true; registration = enabling
    :: else
    fi
  }
  if
  :: isEnabled
  :: else -> markIdle(enabling)
  fi;
  removeRequest(enabling)
}

inline enable() {
  associate();
  enabling++;
  isStarted = true;
  armDelivery(isArming, isStarted);
  if
  :: isStarted -> register()
  :: else
  fi
}

inline disable() {
  if
  :: isEnabled ->
     /* The request to unregister completes the registration, unless the driver refuses it. */
     atomic {
       isRegistered = false;
       if
       :: requests[registration].isPending -> complete(registration, true)
       :: true
       fi
     }
     atomic { cancelEntry(enabling) }
     isEnabled = false
  :: else
  fi
}

/* tIONotificationReader::drain. */
inline drain() {
  do
  :: atomic {
       cancelEntry(DELIVERY);
       cancelEntry(1);
       cancelEntry(2);
       isAnySent = (requests[DELIVERY].isEntered && requests[DELIVERY].state == sent) ||
                   (requests[1].isEntered && requests[1].state == sent) ||
                   (requests[2].isEntered && requests[2].state == sent)
     }
     if
     :: !isAnySent -> break
     :: else ->
        atomic {
          port?request;
          takeOver(request)
        }
        resolve(request, known);
        if
        :: known -> markIdle(request); releaseRead(request)
        :: else
        fi
     fi
  od
}

/* tDeviceInterfaceProxy::close: detach, and the release of the delivery. */
inline closeProxy() {
  atomic {
    cancelEntry(DELIVERY);
    cancelEntry(1);
    cancelEntry(2);
    requests[DELIVERY].hasFile = false;
    requests[1].hasFile = false;
    requests[2].hasFile = false;
    requests[DELIVERY].isRemoved = true;
    if
    :: requests[DELIVERY].isEntered && requests[DELIVERY].state == idle -> erase(DELIVERY)
    :: else
    fi;
    requests[DELIVERY].isOwned = false;
    freeUnused(DELIVERY)
  }
}

active proctype Client() {
  byte enabling;
  byte request;
  bool known;
  bool isArming;
  bool isStarted;
  bool isEnabled;
  bool isAnySent;
  do
  :: enabling < REGISTRATIONS ->
     enable();
     if
     :: isEnabled ->
        /* No notice is lost: all arrive while it is enabled, unless Windows refuses to arm the delivery. */
        received == NOTICES || !canRefuse
     :: true /* or it is disabled at any moment */
     fi;
     disable()
  :: enabling > 0 -> break
  od;
  isNotificationDestroyed = FAULT == FAULT_DESTROY_EARLY;
  /* The end of the reader. */
  if
  :: FAULT != FAULT_NO_WAKE_UP -> port!WAKE_UP
  :: else
  fi;
  isReaderEnded; /* join */
  if
  :: FAULT != FAULT_CLOSE_WITHOUT_DRAIN -> drain()
  :: else
  fi;
  isPortOpen = false;
  /* The end of the notification, then of the proxy. */
  atomic {
    isNotificationDestroyed = true;
    isNotificationKnown = false;
    requests[enabling].isOwned = false;
    freeUnused(enabling)
  }
  closeProxy();
  /* Everything is released. */
  assert(requests[DELIVERY].isFreed);
  assert(requests[enabling].isFreed);
  isEverythingReleased = true
}

/* With fair scheduling every end is reached: no loop waits for ever, and the drain ends. */
ltl everyEndIsReached { <> isEverythingReleased }
