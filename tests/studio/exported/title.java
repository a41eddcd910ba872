GxTextView view = new GxTextView(context);
view.setTextStyle(TextStyle.fromJson(
        "{\n"
        + "  \"text\": \"It's \\\"$HOME\\\" \\\\ — 'EOF'\",\n"
        + "  \"font\": \"Noto Sans Display\",\n"
        + "  \"size\": 72,\n"
        + "  \"bold\": true,\n"
        + "  \"color\": \"#FFFFFF\",\n"
        + "  \"background\": \"#C4101A\",\n"
        + "  \"padding\": 8,\n"
        + "  \"effects\": [\n"
        + "    {\n"
        + "      \"type\": \"outerShadow\",\n"
        + "      \"distance\": 2,\n"
        + "      \"size\": 2,\n"
        + "      \"opacity\": 0.7\n"
        + "    }\n"
        + "  ]\n"
        + "}"));
