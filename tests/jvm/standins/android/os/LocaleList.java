package android.os;

public class LocaleList {
    public String tags;

    public LocaleList(String tags) { this.tags = tags; }

    public static LocaleList forLanguageTags(String tags) { return new LocaleList(tags); }

    public String toLanguageTags() { return tags; }
}
