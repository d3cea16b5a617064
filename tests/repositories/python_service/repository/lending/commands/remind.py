from lending.reminders.registry import CHANNEL_REGISTRY
from lending.store import Store


def run(store: Store, channel="letter"):
    send = CHANNEL_REGISTRY[channel]().send
    for loan in store.loans():
        send(loan.reader, f"{loan.book.title} is due on {loan.due}")


def channels():
    return sorted(CHANNEL_REGISTRY)
