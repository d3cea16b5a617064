from lending.reminders.channels import Channel


class Letter(Channel):
    def send(self, reader, text):
        print(f"To {reader}: {text}")
