import sys

from lending.commands import give_back, lend, remind
from lending.store import Store

ACTIONS = {"lend": lend.run, "give-back": give_back.run, "remind": remind.run}


def main():
    ACTIONS[sys.argv[1]](Store(), *sys.argv[2:])
